#include <algorithm>

#include <mailengine/parser/FaultLog.h>

namespace parser {

int CFaultLog::Record(MailFault::Kind kind, std::string_view from, std::string_view name, int error) {
    if (m_pFault == nullptr || HasFault()) return 0;
    m_pFault->kind = kind;
    m_pFault->offset = static_cast<std::size_t>(from.data() - m_text.data());
    m_pFault->holdsNul = from.find('\0') != std::string_view::npos;
    m_pFault->name = CString(name.substr(0, MailFault::kMaxNameBytes));
    m_pFault->error = error;
    return 0;
}

int CFaultLog::In(int step) {
    if (m_pFault != nullptr) m_pFault->path.push_back(step);
    return 0;
}

void CFaultLog::Close() {
    if (m_pFault != nullptr) std::reverse(m_pFault->path.begin(), m_pFault->path.end());
}

}  // namespace parser
