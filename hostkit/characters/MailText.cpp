#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {

namespace {

// Calls take with each line, its end (LF or CRLF) taken off. What stands behind the last end counts if it is not empty.
template <class Take>
void ForEachLine(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (end != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
        take(line);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

// TABs are harmless and stay.
void AppendShown(std::string& shown, std::string_view line) {
    for (;;) {
        const std::size_t tab = line.find('\t');
        shown += Shown(line.substr(0, tab));
        if (tab == std::string_view::npos) break;
        shown += '\t';
        line.remove_prefix(tab + 1);
    }
    shown += '\n';
}

// A foreign text less what is not seen. What ends a line ends one in a letter, and is a blank in a line, which none
// begins or ends with and no two follow each other.
std::string Cleaned(std::string_view text, Extent extent) {
    std::string cleaned;
    bool isGap = false;
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::Utf8CharacterAt(text, i);
        const bool isEnd = IsLineEnd(character.code);
        if (extent == Extent::Letter && isEnd) {
            const bool stays = character.code == '\t' || character.code == '\r';
            cleaned += stays ? static_cast<char>(character.code) : '\n';
        } else if (isEnd) {
            isGap = true;
        } else if (!IsUnseen(character.code)) {
            if (isGap && !cleaned.empty() && cleaned.back() != ' ' && text[i] != ' ') cleaned += ' ';
            isGap = false;
            cleaned.append(text, i, character.bytes);
        }
        i += character.bytes;
    }
    return cleaned;
}

}  // namespace

std::string TextOf(std::string_view text) {
    return IsUtf8(text) ? std::string(text) : FromCodePage(text);
}

std::string HeaderTextOf(std::string_view text) {
    std::string outside;
    outside.reserve(text.size());
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
        outside += TextOf(line);
        text.remove_prefix(line.size());
    }
    return outside;
}

std::string LineShown(std::string_view text) {
    return Shown(TextOf(text));
}

std::string BodyShown(std::string_view text) {
    std::string room;
    if (!IsUtf8(text)) text = room = FromCodePage(text);
    std::string shown;
    shown.reserve(text.size() + text.size() / 32);
    ForEachLine(text, [&](std::string_view line) { AppendShown(shown, line); });
    return shown;
}

std::string HeaderShown(std::string_view text) {
    return BodyShown(HeaderTextOf(text));
}

CString Carried(std::string_view text, Extent extent) {
    return ToCodePage(Cleaned(TextOf(text), extent), extent, Missing::Replace,
                      {Field::None, Words("the answered mail")});
}

std::string OneLine(const CString& message) {
    std::string line;
    for (const char ch : FromCodePage(message.View())) {
        if (ch != '\r' && ch != '\n') {
            line += ch;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

}  // namespace hostkit
