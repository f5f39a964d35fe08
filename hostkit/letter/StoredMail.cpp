#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/gateway/Glance.h>
#include <hostkit/letter/PartLimit.h>
#include <hostkit/letter/StoredMail.h>
#include <utility>

namespace hostkit {

StoredMail::StoredMail(std::string message, bool strict, const std::string& name) : m_isPassed(!strict) {
    if (strict)
        m_forParser = MessageOf(std::move(message), name);
    else
        Pass(std::move(message));
}

bool StoredMail::IsNone() const {
    const std::string_view bytes = m_block.empty() ? m_forParser.View() : std::string_view(m_block);
    return m_isPassed && m_passed.refusal.empty() && !m_forParser.IsEmpty() && !GlanceAt(bytes).isMessage;
}

void StoredMail::Pass(std::string message) {
    m_block = message.substr(0, EndOfHeader(message));
    m_passed = PassThrough(std::move(message));
    m_forParser = CString(std::move(m_passed.message));
    m_passed.message.clear();
    if (!m_passed.changed) m_block.clear();
}

std::string StoredMail::Refusal() const {
    if (!m_passed.refusal.empty()) return m_passed.refusal;
    if (IsNone()) return Words("is no message: it does not begin with header fields");
    return !m_isPassed && HasTooManyParts(m_forParser) ? TooManyPartsText() : "";  // else the gateway counted
}

std::string StoredMail::TextOf(std::string_view value) const {
    if (!m_isPassed) return hostkit::TextOf(value);
    return m_passed.changed ? m_passed.characters.ToUtf8(value) : FromCodePage(value);
}

}  // namespace hostkit
