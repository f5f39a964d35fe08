#include <algorithm>
#include <array>
#include <cstring>
#include <hostkit/gateway/Dialect.h>
#include <hostkit/gateway/DialectFields.h>
#include <hostkit/gateway/text/Transfer.h>
#include <vector>

namespace hostkit::gateway {
namespace {

constexpr int kMaxAttachedMails = 8;  // one in another; the engine takes more, but nobody sends them
constexpr std::size_t kMaxNameBytes = 160;

// A NUL ends what the engine reads, and a bare LF no line.
bool HasCleanLines(std::string_view text) {
    return text.find('\0') == std::string_view::npos && HasCrlfLines(text);
}

bool IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

bool IsCleanQuotedPrintable(std::string_view data) {
    for (std::size_t i = 0; i < data.size(); ++i) {
        const char before = i > 0 ? data[i - 1] : '\n';
        if (data[i] == '\r' && (before == ' ' || before == '\t')) return false;
        if (data[i] != '=') continue;
        const std::string_view digits = data.substr(i + 1, 2);
        if (digits != "\r\n" && !(digits.size() == 2 && IsHexDigit(digits[0]) && IsHexDigit(digits[1]))) return false;
    }
    return true;
}

bool IsCleanData(std::string_view data, const std::string& encoding) {
    if (encoding == "base64")
        return IsCleanBase64(data, LineEnds::Crlf) && HasCrlfLines(data.substr(data.find_last_not_of("\r\n") + 1));
    return HasCleanLines(data) && (encoding != "quoted-printable" || IsCleanQuotedPrintable(data));
}

std::string_view DecodedText(std::string_view data, const std::string& encoding, std::string& room) {
    if (encoding != "base64" && encoding != "quoted-printable") return data;
    room = DecodeTransfer(
        data, encoding == "base64" ? GMIME_CONTENT_ENCODING_BASE64 : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
    return room;
}

bool IsCleanText(std::string_view data, const DialectContent& content) {
    if (!IsCleanData(data, content.encoding)) return false;
    std::string room;
    const std::string_view text = DecodedText(data, content.encoding, room);
    if (content.charset == "iso-2022-jp") return IsCleanJis(text);
    return (content.charset.empty() || content.charset == "us-ascii") && IsCleanAscii(text);
}

// The engine goes on looking for fields in the first line of a plain body.
bool BeginsLikeField(std::string_view body) {
    const std::size_t end = body.find('\r');
    return body.substr(0, end).find(':') != std::string_view::npos;
}

class Multipart {
public:
    // text begins at the multipart's header.
    Multipart(std::string_view text, std::size_t bodyTop, const std::string& boundary)
        : m_text(text), m_delimiter("\r\n--" + boundary), m_at(bodyTop - 2) {}

    // Takes the parts, of which left more are allowed. false: a delimiter is missing, or one line is not quite one.
    bool Split(std::vector<std::string_view>& parts, std::size_t& left) {
        std::size_t top = std::string_view::npos;
        for (;;) {
            const std::size_t found = FindDelimiter(m_at);
            if (found == std::string_view::npos) return false;
            if (top == std::string_view::npos && !IsCleanPreamble(m_text.substr(m_at, found - m_at))) return false;
            if (top != std::string_view::npos) {
                if (found < top || left-- == 0) return false;
                parts.push_back(m_text.substr(top, found - top));
            }
            const std::string_view behind = m_text.substr(found + m_delimiter.size(), 2);
            if (behind == "--") return !parts.empty() && HasCleanLines(m_text.substr(found));
            if (behind != "\r\n") return false;
            m_at = found + m_delimiter.size();
            top = m_at + 2;
        }
    }

private:
    // It is searched for fields too.
    static bool IsCleanPreamble(std::string_view preamble) {
        return HasCleanLines(preamble) && preamble.find(':') == std::string_view::npos;
    }

    // By its hyphens, of which Base64 has none.
    std::size_t FindDelimiter(std::size_t from) const {
        for (std::size_t at = m_text.find('-', from); at != std::string_view::npos; at = m_text.find('-', at + 1))
            if (at >= from + 2 && m_text.substr(at - 2).starts_with(m_delimiter)) return at - 2;
        return std::string_view::npos;
    }

    std::string_view m_text;
    std::string m_delimiter;
    std::size_t m_at;
};

// How far a message may go: mails in one another, and parts of all of them.
struct Room {
    int depth = 0;
    std::size_t parts;
};

bool IsMessage(std::string_view message, Room& room);

struct Block {
    Header header;
    DialectContent content;
    std::size_t bodyTop = 0;
};

bool ReadBlock(std::string_view text, Block& block) {
    block.header = ReadHeader(text, block.bodyTop);
    return IsStrictBlock(text, block.header, block.bodyTop) && AreCleanFields(block.header) &&
           ReadDialectContent(block.header, block.content);
}

bool IsAlternative(std::string_view text, const Block& block, Room& room) {
    std::vector<std::string_view> parts;
    if (!Multipart(text, block.bodyTop, block.content.boundary).Split(parts, room.parts)) return false;
    int texts = 0;
    for (const std::string_view part : parts) {
        Block inner;
        if (!ReadBlock(part, inner) || !inner.content.type.starts_with("text/") || inner.content.isAttachment ||
            inner.content.isNamedOtherwise || !inner.content.name.empty())
            return false;
        if (inner.content.type != "text/plain") continue;
        const std::string_view body = part.substr(inner.bodyTop);
        const bool isBlank = body.find_first_not_of(" \t\r\n") == std::string_view::npos;
        if (++texts > 1 || isBlank || !IsCleanText(body, inner.content)) return false;
    }
    return texts == 1;
}

bool IsAttachedMail(const Block& block, std::string_view mail, Room& room) {
    const std::string& encoding = block.content.encoding;
    if (encoding == "base64" || encoding == "quoted-printable" || room.depth >= kMaxAttachedMails) return false;
    ++room.depth;
    const bool isInside = IsMessage(mail, room);
    --room.depth;
    return isInside;
}

bool IsAttachment(const Block& block, std::string_view data) {
    const DialectContent& content = block.content;
    if (content.name.empty() || content.name.size() > kMaxNameBytes || content.isNamedOtherwise) return false;
    if (content.type.starts_with("multipart/") || content.charset == "iso-2022-jp") return false;
    return IsCleanData(data, content.encoding);
}

bool IsMixed(std::string_view text, const Block& block, Room& room) {
    std::vector<std::string_view> parts;
    if (!Multipart(text, block.bodyTop, block.content.boundary).Split(parts, room.parts)) return false;
    int texts = 0;
    for (const std::string_view part : parts) {
        Block inner;
        if (!ReadBlock(part, inner)) return false;
        const DialectContent& content = inner.content;
        const std::string_view body = part.substr(inner.bodyTop);
        if (content.type == "multipart/alternative") {
            if (++texts > 1 || !IsAlternative(part, inner, room)) return false;
        } else if (content.type == "message/rfc822") {
            if (!IsAttachedMail(inner, body, room)) return false;
        } else if (content.type == "text/plain" && content.name.empty()) {
            const bool isLetter = !content.isAttachment && !content.isNamedOtherwise;
            if (++texts > 1 || !isLetter || !IsCleanText(body, content)) return false;
        } else if (!IsAttachment(inner, body)) {
            return false;
        }
    }
    return true;
}

bool IsMessage(std::string_view message, Room& room) {
    Block block;
    if (!ReadBlock(message, block) || block.header.Find("MIME-Version") == nullptr) return false;
    if (room.depth > 0 && block.header.Find("Subject") == nullptr) return false;  // an attached mail is named by it
    const DialectContent& content = block.content;
    if (content.type.starts_with("multipart/") && content.boundary.empty()) return false;
    if (content.type == "multipart/mixed") return IsMixed(message, block, room);
    if (content.type == "multipart/alternative") return IsAlternative(message, block, room);
    const std::string_view body = message.substr(block.bodyTop);
    return content.type == "text/plain" && content.name.empty() && !content.isNamedOtherwise && !content.isAttachment &&
           !BeginsLikeField(body) && IsCleanText(body, content);
}

}  // namespace

bool HasCrlfLines(std::string_view text) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
        if (at == 0 || text[at - 1] != '\r') return false;
    return true;
}

bool IsInDialect(std::string_view message, std::size_t maxParts) {
    Room room{.parts = maxParts};
    return IsMessage(message, room);
}

}  // namespace hostkit::gateway
