#include <hostkit/letter/Addresses.h>

#include <mailengine/encoding/Language.h>

namespace hostkit {

namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

[[noreturn]] void Refuse(std::string_view text, Field field, const std::string& fact) {
    throw Failure(FailureKind::Value, {field, "'" + std::string(text) + "'"}, fact);
}

// Refuses what CAddress would read as something else than the user meant: what stands behind the ">" would be lost, and
// a second address beside a comma would go to nobody.
void CheckForm(std::string_view text, Field field) {
    const std::size_t left = text.find('<');
    const std::size_t right = text.find('>');
    if (left == std::string_view::npos && right == std::string_view::npos) return;
    if (left == std::string_view::npos || right != text.size() - 1 || left > right)
        Refuse(text, field, "give one address, as 'name <user@host>' or user@host");
}

void CheckMailAddress(const CAddress& address, std::string_view text, Field field) {
    CString message;
    if (!CAddress::CheckAddress(address.GetMailAddress(), message)) Refuse(text, field, FromCodePage(message.View()));
    if (address.GetMailAddress().View().find_first_of(" ,;<>") != std::string_view::npos)
        Refuse(text, field, "a mail address holds no blank, comma, semicolon or angle bracket; give one address");
}

// A plain name goes out as a quoted string with its backslash as it is, which would quote what stands behind it (RFC
// 5322 3.2.4), at the end the closing quote.
void CheckPlainName(const CAddress& address, std::string_view text, Field field) {
    const CString name = address.GetDisplayName();
    if (CLanguage::IsJapanese(name) || name.View().find('\\') == std::string_view::npos) return;
    Refuse(text, field, "a backslash in a plain name cannot be carried; leave it out");
}

}  // namespace

CAddress AddressOf(const std::string& text, Missing missing, Field field) {
    const CString line = ToCodePage(text, Extent::Line, missing, {field});
    const std::string_view shown = Trimmed(text);
    CheckForm(shown, field);
    CAddress address;
    address.FromText(CString(Trimmed(line.View())));
    CheckMailAddress(address, shown, field);
    CheckPlainName(address, shown, field);
    DropQuotes(address);
    return address;
}

void DropQuotes(CAddress& address) {
    const CString name = address.GetDisplayName();
    const std::string_view view = name.View();
    if (view.size() >= 2 && view.front() == '"' && view.back() == '"')
        address.SetDisplayName(CString(view.substr(1, view.size() - 2)));
}

std::vector<CAddress> AddressesOf(const CMailDoc& doc, unsigned int size, AddressAt addressAt) {
    std::vector<CAddress> addresses;
    addresses.reserve(size);
    for (unsigned int i = 0; i < size; ++i)
        addresses.push_back(*(doc.*addressAt)(i));
    return addresses;
}

}  // namespace hostkit
