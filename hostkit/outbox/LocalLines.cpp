#include <hostkit/outbox/LocalLines.h>

namespace hostkit {

int LocalLines::WriteString(const char* text) {
    if (text == nullptr) return 1;
    m_strLines.clear();
    for (; *text != '\0'; ++text) {
        if (*text != '\n' || !m_bBehindCr) m_strLines += *text == '\r' ? '\n' : *text;
        m_bBehindCr = *text == '\r';
    }
    return m_target.WriteString(m_strLines.c_str());
}

}  // namespace hostkit
