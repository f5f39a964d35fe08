#include "MailText.h"

#include "Utf8.h"

namespace {

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8::CharacterAt(text, i).length;
        if (length == 0) return false;
        i += length;
    }
    return true;
}

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
        shown += utf8::Shown(line.substr(0, tab));
        if (tab == std::string_view::npos) break;
        shown += '\t';
        line.remove_prefix(tab + 1);
    }
    shown += '\n';
}

bool MayStay(char32_t code, border::Extent extent) {
    if (code >= 0x20) return code < 0x7F || code >= 0xA0;
    return extent == border::Extent::Letter && (code == '\r' || code == '\n' || code == '\t');
}

}  // namespace

std::string mailtext::Outside(std::string_view text) {
    return IsUtf8(text) ? std::string(text) : border::ToOutside(text);
}

std::string mailtext::HeaderOutside(std::string_view text) {
    std::string outside;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
        outside += Outside(line);
        text.remove_prefix(line.size());
    }
    return outside;
}

std::string mailtext::LineShown(std::string_view text) {
    return utf8::Shown(Outside(text));
}

std::string mailtext::BodyShown(std::string_view text) {
    std::string shown;
    ForEachLine(Outside(text), [&](std::string_view line) { AppendShown(shown, line); });
    return shown;
}

std::string mailtext::HeaderShown(std::string_view text) {
    return BodyShown(HeaderOutside(text));
}

CString mailtext::Carried(std::string_view text, border::Extent extent) {
    const std::string outside = Outside(text);
    std::string cleaned;
    for (std::size_t i = 0; i < outside.size();) {
        const utf8::Character character = utf8::CharacterAt(outside, i);
        if (MayStay(character.code, extent)) cleaned.append(outside, i, character.length);
        i += character.length;
    }
    return border::ToInside(cleaned, extent, border::Missing::Replace, "the answered mail");
}
