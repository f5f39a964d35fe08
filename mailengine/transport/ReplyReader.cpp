#include <algorithm>
#include <utility>

#include <mailengine/transport/ReplyReader.h>

namespace {

constexpr std::size_t kCodeBytes = 3;

// Whether a reply line may begin so; bytes can be all of it, without its end.
bool BeginsLine(std::string_view bytes) {
    const std::string_view code = bytes.substr(0, kCodeBytes);
    return (code.empty() || (code[0] >= '2' && code[0] <= '5')) &&
           std::all_of(code.begin(), code.end(), [](char ch) { return ch >= '0' && ch <= '9'; }) &&
           (bytes.size() <= kCodeBytes || bytes[kCodeBytes] == ' ' || bytes[kCodeBytes] == '-');
}

std::string_view WithoutCr(std::string_view line) {
    return line.substr(0, line.size() - (line.ends_with('\r') ? 1 : 0));
}

}  // namespace

CReplyReader::State CReplyReader::Next(ServerReply& reply) {
    State state = kIncomplete;
    while (state == kIncomplete) {
        // QUIRK: a bare LF ends a line too (RFC 5321 2.3.8 knows CRLF alone). Servers that send it exist, and who waits
        // for their CR waits for ever. No text may hold one (4.2), so a server that keeps the rules is not misread.
        const std::size_t end = m_bytes.find('\n', m_searched);
        m_searched = end == std::string::npos ? m_bytes.size() : end + 1;
        if (m_searched > kMaxReplyBytes) return kTooLong;
        const std::string_view line = WithoutCr(std::string_view(m_bytes).substr(m_lineTop, end - m_lineTop));
        if (end == std::string::npos) return BeginsLine(line) ? kIncomplete : kMalformed;
        state = TakeLine(line);
        m_lineTop = m_searched;
    }
    if (state == kWhole) GiveOut(reply);
    return state;
}

// kIncomplete: further lines of the reply follow.
CReplyReader::State CReplyReader::TakeLine(std::string_view line) {
    if (line.size() < kCodeBytes || !BeginsLine(line)) return kMalformed;
    if (!m_text.empty() && !m_text.starts_with(line.substr(0, kCodeBytes))) return kMalformed;
    m_text.append(line).append("\r\n");
    return line.size() > kCodeBytes && line[kCodeBytes] == '-' ? kIncomplete : kWhole;
}

void CReplyReader::GiveOut(ServerReply& reply) {
    reply.code = (m_text[0] - '0') * 100 + (m_text[1] - '0') * 10 + (m_text[2] - '0');
    reply.text = std::exchange(m_text, {});
    m_bytes.erase(0, m_lineTop);
    m_lineTop = m_searched = 0;
}
