#include <mailengine/encoding/Language.h>
#include <mailengine/model/Address.h>
#include <mailengine/support/Texts.h>

namespace {

constexpr char kEscapedQuote[] = "\\\"";

void RemoveQuotes(CString& name) {
    const std::string_view text = name.View();
    if (text.empty() || text.front() != '"' || text.back() != '"' || CLanguage::IsJapanese(name)) return;
    name = name.Mid(1, name.GetLength() - 2);
}

}  // namespace

CAddress::CAddress(const char* groupName, const char* displayName, const char* mailAddress)
    : m_groupName(groupName), m_displayName(displayName), m_mailAddress(mailAddress) {}

int CAddress::SetIcon(HICON) {
    return 1;
}

void CAddress::Clear() {
    m_groupName.Empty();
    m_displayName.Empty();
    m_mailAddress.Empty();
}

void CAddress::FromText(const CString& text) {
    const CString source = text;  // Clear would empty it if it were one of this object's own
    Clear();
    const int open = source.Find('<');
    if (open == -1) {
        m_mailAddress = source;
        return;
    }
    m_displayName = source.Left(open);
    m_displayName.TrimRight();
    RemoveQuotes(m_displayName);
    m_displayName.Replace(kEscapedQuote, "\"");
    // The first ">" of the whole text counts, so one in front of the "<" leaves no address.
    const int close = source.Find('>');
    m_mailAddress = close == -1 ? source.Mid(open + 1) : source.Mid(open + 1, close - open - 1);
    m_mailAddress.TrimLeft();
    m_mailAddress.TrimRight();
}

CString CAddress::ToText() const {
    return m_displayName.IsEmpty() ? m_mailAddress : m_displayName + " <" + m_mailAddress + ">";
}

CString CAddress::ToTextForMail() const {
    if (m_displayName.IsEmpty()) return m_mailAddress;
    CString quoted = m_displayName;
    quoted.Replace("\"", kEscapedQuote);
    return "\"" + quoted + "\" <" + m_mailAddress + ">";
}

int CAddress::IsValid() const {
    CString message;
    return CheckAddress(m_mailAddress, message);
}

int CAddress::CheckAddress(const CString& address, CString& message) {
    if (address.IsEmpty()) {
        message = texts::kAddressEmpty;
        return 0;
    }
    if (CLanguage::IsJapanese(address)) {
        message = texts::kAddressJapanese;
        return 0;
    }
    const int at = address.Find('@');
    if (at == -1 || at == 0 || at == address.GetLength() - 1) {
        message = texts::kAddressMalformed;
        return 0;
    }
    return 1;
}
