#include <algorithm>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/letter/PartLimit.h>
#include <hostkit/letter/StoredMail.h>
#include <utility>

namespace hostkit {

std::size_t HeaderBytes(std::string_view message) {
    const std::size_t top = std::min(message.find_first_not_of("\r\n"), message.size());
    const auto endsBlock = [&](std::size_t at) {
        const std::string_view next = message.substr(at + 1);
        return next.starts_with('\n') || next.starts_with("\r\n");
    };
    std::size_t end = message.find('\n', top);  // not by a search for two line ends, which a long body may lack
    while (end != std::string_view::npos && !endsBlock(end))
        end = message.find('\n', end + 1);
    end = std::min(end, message.substr(0, end).find("\r\r", top));
    return end == std::string_view::npos ? message.size() : end + 1;
}

StoredMail::StoredMail(std::string message, bool strict, const std::string& name) : m_isPassed(!strict) {
    if (strict)
        m_forParser = MessageOf(std::move(message), name);
    else
        Pass(std::move(message));
}

void StoredMail::Pass(std::string message) {
    m_block = message.substr(0, HeaderBytes(message));
    m_passed = PassThrough(std::move(message));
    m_forParser = CString(std::move(m_passed.message));
    m_passed.message.clear();
    if (!m_passed.changed) m_block.clear();
}

std::string StoredMail::Refusal() const {
    if (!m_passed.refusal.empty()) return m_passed.refusal;
    return !m_isPassed && HasTooManyParts(m_forParser) ? TooManyPartsText() : "";  // else the gateway counted
}

std::string StoredMail::TextOf(std::string_view value) const {
    if (!m_isPassed) return hostkit::TextOf(value);
    return m_passed.changed ? m_passed.characters.ToUtf8(value) : FromCodePage(value);
}

}  // namespace hostkit
