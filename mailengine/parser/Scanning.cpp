#include <algorithm>
#include <climits>

#include <mailengine/parser/Scanning.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

constexpr std::string_view kEmptyLine = "\r\n\r\n";

bool IsWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsContinuation(std::string_view text, int at) {
    return StandsAt(text, at, " ") || StandsAt(text, at, "\t");
}

}  // namespace

std::string_view TextOf(const CString& text) {
    return text.View().substr(0, INT_MAX);
}

std::string_view NameOf(const CString& text) {
    return static_cast<const char*>(text);
}

int Find(std::string_view text, std::string_view wanted, int start) {
    const std::size_t from = static_cast<std::size_t>(std::max(start, 0));
    if (from > text.size()) return -1;
    const std::size_t at = platform::FindTextBeforeNul(text.substr(from), wanted);
    return at == std::string_view::npos ? -1 : static_cast<int>(from + at);
}

std::string_view Mid(std::string_view text, int first, int count) {
    const std::size_t from = std::min(text.size(), static_cast<std::size_t>(std::max(first, 0)));
    return text.substr(from, static_cast<std::size_t>(std::max(count, 0)));
}

std::string_view Mid(std::string_view text, int first) {
    return Mid(text, first, INT_MAX);
}

std::string_view TrimLeft(std::string_view text) {
    text.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsWhiteSpace) - text.begin()));
    return text;
}

std::string_view TrimRight(std::string_view text) {
    text.remove_suffix(
        static_cast<std::size_t>(std::find_if_not(text.rbegin(), text.rend(), IsWhiteSpace) - text.rbegin()));
    return text;
}

std::string_view Trim(std::string_view text) {
    return TrimRight(TrimLeft(text));
}

bool StandsAt(std::string_view text, int at, std::string_view wanted) {
    return Mid(text, at, LengthOf(wanted)) == wanted;
}

bool StandsAtIgnoringCase(std::string_view text, int at, std::string_view wanted) {
    return platform::EqualIgnoringCase(Mid(text, at, LengthOf(wanted)), wanted);
}

FieldLine FindFieldLine(std::string_view text, int start, std::string_view nameWithColon) {
    for (int top = std::max(start, 0);;) {
        const bool blockEnds = StandsAt(text, top, kEmptyLine) || (top >= 2 && StandsAt(text, top - 2, kEmptyLine));
        if (blockEnds) return {-1, top};
        if (StandsAtIgnoringCase(text, top, nameWithColon)) return {top, top};
        const int lineEnd = Find(text, kCrlf, top);
        if (lineEnd == -1) return {-1, top};
        top = lineEnd + 2;
    }
}

CUnfolded::CUnfolded(std::string_view text, int top) : m_nNext(top) {
    int lineEnd = Find(text, kCrlf, top);
    m_bRead = lineEnd != -1;
    if (!m_bRead) return;
    m_first = Mid(text, top, lineEnd - std::max(top, 0));
    for (m_nNext = lineEnd + 2; IsContinuation(text, m_nNext); m_nNext = lineEnd + 2) {
        lineEnd = Find(text, kCrlf, m_nNext);
        if (lineEnd == -1) return;
        if (m_strJoined.empty()) m_strJoined = m_first;
        m_strJoined += TrimLeft(Mid(text, m_nNext, lineEnd - m_nNext));
    }
}

int FindEmptyLine(std::string_view text, int start) {
    for (int at = start;; at += 2) {
        at = Find(text, kCrlf, at);
        if (at <= 0) return -1;
        if (at == LengthOf(text) - 2) return at;
        if (at >= 2 && StandsAt(text, at - 2, kCrlf)) return at;
        if (StandsAt(text, at + 2, kCrlf)) return at + 2;
    }
}

CDelimiters::CDelimiters(std::string_view text, std::string_view boundary)
    : m_text(text), m_pattern(std::string(kCrlf) + wire::kDelimiterHyphens) {
    const bool canOverlap = boundary.find(m_pattern) != std::string_view::npos;
    m_pattern += boundary;
    if (canOverlap) MakeBorders();
}

std::string_view CDelimiters::Boundary() const {
    return std::string_view(m_pattern).substr(kCrlf.size() + std::string_view(wire::kDelimiterHyphens).size());
}

int CDelimiters::FindTop(int start) {
    const int from = std::max(start, 0);
    const bool known = m_nFound != -2 && from >= m_nFrom && (m_nFound == -1 || from <= m_nFound);
    if (!known) Search(from);
    return m_nFound;
}

bool CDelimiters::FindNext(int start, Delimiter& found) {
    found.at = FindTop(start);
    if (found.at == -1) return false;
    found.last = StandsAt(m_text, found.at + LengthOf(m_pattern), wire::kDelimiterHyphens);
    found.lineEnd = LineEnd(found.at);
    return true;
}

int CDelimiters::LineEnd(int delimiter) const {
    const int lineEnd = Find(m_text, kCrlf, delimiter + 1);
    return lineEnd == -1 ? LengthOf(m_text) : lineEnd;
}

void CDelimiters::Search(int start) {
    m_nFound = m_borders.empty() ? Find(m_text, m_pattern, start) : SearchOverlapping(start);
    m_nFrom = start;
}

// The search of Knuth, Morris and Pratt, which goes on where the last one of the same text ended.
int CDelimiters::SearchOverlapping(int start) {
    const bool goesOn = m_nFound >= 0 && start > m_nFound && start < m_nScanned;
    if (!goesOn) {
        m_nScanned = start;
        m_nMatched = 0;
    }
    for (; m_nScanned < LengthOf(m_text); ++m_nScanned) {
        const char c = m_text[static_cast<std::size_t>(m_nScanned)];
        if (c == 0) return -1;
        while (m_nMatched > 0 && (m_nMatched == m_pattern.size() || m_pattern[m_nMatched] != c))
            m_nMatched = m_borders[m_nMatched - 1];
        if (m_pattern[m_nMatched] == c) ++m_nMatched;
        if (m_nMatched < m_pattern.size()) continue;
        const std::size_t behind = static_cast<std::size_t>(m_nScanned) + 1;
        const bool cutsCharacter = m_bEndsInLeadByte && behind < m_text.size() &&
                                   platform::IsTrailByte(static_cast<unsigned char>(m_text[behind]));
        const int top = static_cast<int>(behind - m_pattern.size());
        if (cutsCharacter || top < start) continue;
        ++m_nScanned;
        return top;
    }
    return -1;
}

// For each head of the pattern the length of its longest border: a shorter head that is also its tail.
void CDelimiters::MakeBorders() {
    m_borders.assign(m_pattern.size(), 0);
    for (std::size_t at = 1, length = 0; at < m_pattern.size(); ++at) {
        while (length > 0 && m_pattern[at] != m_pattern[length])
            length = m_borders[length - 1];
        if (m_pattern[at] == m_pattern[length]) ++length;
        m_borders[at] = static_cast<std::uint32_t>(length);
    }
    for (std::size_t at = 0; at < m_pattern.size(); at += platform::CharacterBytes(m_pattern, at))
        m_bEndsInLeadByte =
            at + 1 == m_pattern.size() && platform::IsLeadByte(static_cast<unsigned char>(m_pattern[at]));
}

}  // namespace parser
