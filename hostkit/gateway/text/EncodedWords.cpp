#include <algorithm>
#include <gmime/gmime.h>
#include <hostkit/gateway/text/Charsets.h>
#include <hostkit/gateway/text/Detection.h>
#include <hostkit/gateway/text/EncodedWords.h>
#include <hostkit/gateway/text/Iso2022.h>
#include <hostkit/gateway/text/Transfer.h>
#include <optional>

namespace hostkit::gateway {
namespace {

struct Word {
    std::string charset;
    std::string bytes;
    std::size_t end = 0;  // behind its "?="
};

constexpr std::string_view kBlank = " \t\r\n";

std::string DecodeQ(std::string_view text) {
    std::string spaced(text);
    for (char& c : spaced)
        if (c == '_') c = ' ';
    return DecodeTransfer(spaced, GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
}

// The word whose "=?" stands at from.
std::optional<Word> WordAt(std::string_view value, std::size_t from) {
    const std::size_t charsetEnd = value.find('?', from + 2);
    if (charsetEnd == std::string_view::npos || charsetEnd + 2 >= value.size() || value[charsetEnd + 2] != '?')
        return std::nullopt;
    const char encoding = static_cast<char>(value[charsetEnd + 1] | 0x20);
    const std::size_t text = charsetEnd + 3;
    const std::size_t end = value.find("?=", text);
    if ((encoding != 'b' && encoding != 'q') || end == std::string_view::npos) return std::nullopt;
    const std::string_view charset = value.substr(from + 2, charsetEnd - from - 2);
    if (charset.find_first_of(" \t\"<>@") != std::string_view::npos) return std::nullopt;
    const std::string_view encoded = value.substr(text, end - text);
    return Word{std::string(charset.substr(0, charset.find('*'))),  // RFC 2231 5 puts a language behind a star
                encoding == 'b' ? DecodeTransfer(encoded, GMIME_CONTENT_ENCODING_BASE64) : DecodeQ(encoded), end + 2};
}

// The next word, if nothing but blanks lies between.
std::optional<Word> NextWord(std::string_view value, std::size_t from) {
    const std::size_t next = value.find_first_not_of(kBlank, from);
    if (next == std::string_view::npos || !value.substr(next).starts_with("=?")) return std::nullopt;
    return WordAt(value, next);
}

// The text of a run of words, from the first, which begins at a "=?". Bytes of one charset are joined before they are
// converted, since many programs cut a character in two.
std::string RunOfWords(std::string_view value, Word word, std::size_t& end) {
    std::string text;
    std::size_t ignored = 0;
    for (std::optional<Word> next = NextWord(value, word.end); next; next = NextWord(value, word.end)) {
        if (g_ascii_strcasecmp(next->charset.c_str(), word.charset.c_str()) == 0) {
            word.bytes += next->bytes;
        } else {
            text += TextToUtf8(word.bytes, word.charset, ignored);
            word.charset = next->charset;
            word.bytes = next->bytes;
        }
        word.end = next->end;
    }
    end = word.end;
    return text + TextToUtf8(word.bytes, word.charset, ignored);
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '"' || c == '\\' || c == '(' || c == ')') escaped += '\\';
        escaped += c == '\r' || c == '\n' || c == '\0' ? ' ' : c;
    }
    return escaped;
}

// Follows the quotes and comments of a structured field.
class Context {
public:
    void Pass(std::string_view text) {
        for (const char c : text)
            Pass(c);
    }
    bool IsInside() const { return m_quoted || m_comments > 0; }

private:
    void Pass(char c) {
        if (m_escaped)
            m_escaped = false;
        else if (c == '\\')
            m_escaped = IsInside();
        else if (c == '"' && m_comments == 0)
            m_quoted = !m_quoted;
        else if (c == '(' && !m_quoted)
            ++m_comments;
        else if (c == ')' && !m_quoted && m_comments > 0)
            --m_comments;
    }

    bool m_quoted = false;
    bool m_escaped = false;
    int m_comments = 0;
};

}  // namespace

std::string DecodeWords(std::string_view raw, Words words, std::string_view letter) {
    const bool isPlain =
        std::all_of(raw.begin(), raw.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80 && c != '\x1b'; });
    std::string room = isPlain ? "" : RawToUtf8(raw, letter);
    const std::string_view value = isPlain ? raw : room;
    std::string decoded;
    Context context;
    std::size_t done = 0;
    const std::size_t lastEnd = value.rfind("?=");  // behind it nothing is worth a search for an end
    for (std::size_t at = value.find("=?"); at < lastEnd && lastEnd != std::string::npos; at = value.find("=?", at)) {
        const std::optional<Word> word = WordAt(value, at);
        if (!word) {
            at += 2;
            continue;
        }
        const std::string_view before = value.substr(done, at - done);
        decoded += before;
        context.Pass(before);
        const std::string text = RunOfWords(value, *word, done);
        if (words == Words::Text)
            decoded += text;
        else if (context.IsInside())
            decoded += Escaped(text);
        else
            decoded += '"' + Escaped(text) + '"';
        at = done;
    }
    if (done == 0 && !room.empty()) return room;
    return decoded.append(value, done);
}

}  // namespace hostkit::gateway
