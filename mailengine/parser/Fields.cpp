#include <algorithm>
#include <array>
#include <utility>

#include <mailengine/parser/Fields.h>
#include <mailengine/support/Wire.h>

namespace parser {
namespace {

// A field's name as it stands at a line top, with its colon.
template <std::size_t size>
constexpr std::array<char, size> WithColon(const char (&name)[size]) {
    std::array<char, size> field{};
    std::copy_n(name, size - 1, field.begin());
    field.back() = ':';
    return field;
}

constexpr auto kContentTypeTop = WithColon(wire::kContentType);
constexpr auto kTransferEncodingTop = WithColon(wire::kContentTransferEncoding);
constexpr std::string_view kContentType(kContentTypeTop.data(), kContentTypeTop.size());
constexpr std::string_view kTransferEncoding(kTransferEncodingTop.data(), kTransferEncodingTop.size());

// What a header field is called, and where its value goes.
struct Row {
    std::string_view name;
    std::optional<CString> Header::*value;
};
constexpr Row kSubject[] = {{"Subject:", &Header::subject}};
constexpr Row kRows[] = {{"From:", &Header::from},
                         {"To:", &Header::to},
                         {"Cc:", &Header::cc},
                         {"Message-ID:", &Header::messageId},
                         {"References:", &Header::references},
                         kSubject[0],
                         {"Date:", &Header::date}};

void ReadRow(std::string_view text, int top, const Row& row, Header& header) {
    CString value;
    int behind = 0;
    if (ReadField(text, top, row.name.size() - 1, value, behind)) header.*row.value = std::move(value);
}

// A field that cannot be read is the last line of all, so that no later one of its name can come.
template <std::size_t size>
Header ReadRows(std::string_view text, int bodyTop, const Row (&rows)[size]) {
    Header header;
    for (int top = 0, lineEnd = 0; top <= bodyTop; top = lineEnd + 2) {
        for (const Row& row : rows)
            if (!(header.*row.value) && StandsAtIgnoringCase(text, top, row.name)) ReadRow(text, top, row, header);
        lineEnd = Find(text, kCrlf, top);
        if (lineEnd == -1) break;
    }
    return header;
}

}  // namespace

bool ReadField(std::string_view text, int top, std::size_t nameLength, CString& value, int& next) {
    const CUnfolded field(text, top);
    next = field.Next();
    if (!field.IsRead()) return false;
    const std::string_view line = field.Line();
    value = DecodeFieldValue(Trim(line.substr(std::min(line.size(), nameLength + 1))));
    return true;
}

bool FindField(std::string_view text, int start, std::string_view nameWithColon, CString& value, int& next) {
    const FieldLine line = FindFieldLine(text, start, nameWithColon);
    return line.top != -1 && ReadField(text, line.top, nameWithColon.size() - 1, value, next);
}

CString TakeTransferEncoding(std::string_view text, int& cur) {
    CString encoding = "7bit";
    FindField(text, cur, kTransferEncoding, encoding, cur);
    return encoding;
}

const ContentType& CEntity::GetContentType(int start, int& next) {
    const bool known = m_nFrom != -1 && start >= m_nFrom && start <= m_line.lastLooked;
    if (!known) {
        m_line = FindFieldLine(m_text, start, kContentType);
        m_nFrom = start;
        m_bRead = false;
    }
    if (!m_bRead) {
        CString value;
        m_nNext = m_line.top;
        const bool read = m_line.top != -1 && ReadField(m_text, m_line.top, kContentType.size() - 1, value, m_nNext);
        m_type = read ? SplitContentType(value.View()) : ContentType();
        m_bRead = true;
    }
    if (m_line.top != -1) next = m_nNext;
    return m_type;
}

ContentType CEntity::TakeContentType(int start, int& next) {
    (void)GetContentType(start, next);
    m_bRead = false;
    return std::move(m_type);
}

Header ReadHeader(std::string_view text, int bodyTop) {
    return ReadRows(text, bodyTop, kRows);
}

CString ReadSubjectField(std::string_view text, int bodyTop) {
    return ReadRows(text, bodyTop, kSubject).subject.value_or(CString());
}

}  // namespace parser
