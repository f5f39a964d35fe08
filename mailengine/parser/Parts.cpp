#include <mailengine/parser/Parts.h>
#include <mailengine/parser/Values.h>

namespace parser {

CParts::CParts(std::string_view text, int start, std::string_view parameters, Range& range, CFaultLog& faults)
    : m_text(text), m_delimiters(text, GetParameter(parameters, "boundary").View()), m_range(range), m_faults(faults) {
    m_delimiter.lineEnd = start;
}

bool CParts::Next(Part& part) {
    if (part.number == 0) part.walked = m_delimiter.lineEnd;
    if (m_delimiters.Boundary().empty())
        return m_faults.Record(MailFault::Kind::kNoBoundary, Mid(m_text, part.walked)) != 0;
    const bool found = m_delimiters.FindNext(part.walked, m_delimiter);
    if (!found || m_delimiter.last) return End(found, part);
    if (part.number == 0) m_range.top = m_delimiter.at;
    part = {part.number + 1, m_delimiter.lineEnd, m_delimiter.lineEnd};
    return true;
}

int CParts::FailIn(const Part& part) {
    if (m_faults.HasFault()) return m_faults.InPart(part.number);
    return m_faults.Record(MailFault::Kind::kNoClosingDelimiter, Mid(m_text, part.top), m_delimiters.Boundary());
}

bool CParts::End(bool found, const Part& last) {
    m_range.end = m_delimiter.lineEnd;
    if (found) return false;
    const auto kind = last.number == 0 ? MailFault::Kind::kNoDelimiter : MailFault::Kind::kNoClosingDelimiter;
    return m_faults.Record(kind, Mid(m_text, last.walked), m_delimiters.Boundary()) != 0;
}

}  // namespace parser
