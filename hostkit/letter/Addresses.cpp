#include <algorithm>
#include <glib.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Addresses.h>
#include <iterator>
#include <memory>

#include <mailengine/encoding/Language.h>

namespace hostkit {

namespace {

constexpr std::string_view kBlanks[] = {" ", "\t", "\u3000"};  // the last is what a Japanese keyboard gives
constexpr std::string_view kScheme = "mailto:";

std::string_view Trimmed(std::string_view text) {
    const auto trim = [&](std::string_view blank) {
        const bool isBefore = text.starts_with(blank);
        if (isBefore) text.remove_prefix(blank.size());
        const bool isBehind = text.ends_with(blank);
        if (isBehind) text.remove_suffix(blank.size());
        return isBefore || isBehind;
    };
    while (std::any_of(std::begin(kBlanks), std::end(kBlanks), trim)) {
    }
    return text;
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
        Refuse(text, field, Words("give one address, as 'name <user@host>' or user@host"));
}

// Behind the local part: a quoted one may hold an @ (RFC 5322 3.4.1).
std::size_t SeparatorIn(std::string_view address) {
    std::size_t i = 0;
    if (address.starts_with('"')) {
        for (i = 1; i < address.size() && address[i] != '"'; ++i)
            if (address[i] == '\\') ++i;
    }
    return address.find('@', i);
}

// Dots may stand anywhere in the local part, against RFC 5322 3.2.3: providers in Japan gave out such addresses. A
// domain has a label between its dots and no dot at an end (RFC 5321 4.1.2).
void CheckDomain(std::string_view address, std::string_view text, Field field) {
    const std::size_t begin = std::min(SeparatorIn(address), address.size() - 1) + 1;
    const auto refuse = [&](const char* sentence, std::size_t at) {
        Refuse(text, field, Words(sentence, address.substr(0, at)));
    };
    if (begin == address.size()) refuse(Marked("no @ with a domain stands behind '{1}'"), begin);
    if (const std::size_t at = address.find('@', begin); at != std::string_view::npos)
        refuse(Marked("a second @ stands behind '{1}'"), at);
    if (address[begin] == '.') refuse(Marked("a dot stands behind '{1}'"), begin);
    if (const std::size_t dots = address.find("..", begin); dots != std::string_view::npos)
        refuse(Marked("a second dot stands behind '{1}'"), dots + 1);
    if (address.back() == '.') refuse(Marked("a last dot stands behind '{1}'"), address.size() - 1);
}

void CheckMailAddress(const CAddress& address, std::string_view text, Field field) {
    CString message;
    if (!CAddress::CheckAddress(address.GetMailAddress(), message)) Refuse(text, field, FromCodePage(message.View()));
    if (address.GetMailAddress().View().find_first_of(" ,;<>") != std::string_view::npos)
        Refuse(text, field,
               Words("a mail address holds no blank, comma, semicolon or angle bracket; give one address"));
    CheckDomain(address.GetMailAddress().View(), text, field);
}

// What a browser copies of a link (RFC 6068); fields in it are refused, since they would be lost.
std::string WithoutScheme(std::string_view address, std::string_view text, Field field) {
    if (g_ascii_strncasecmp(address.data(), kScheme.data(), std::min(address.size(), kScheme.size())) != 0 ||
        address.size() < kScheme.size())
        return std::string(address);
    const std::string coded(address.substr(kScheme.size()));
    if (coded.find('?') != std::string::npos)
        Refuse(text, field, Words("give the address alone, without what '?' begins"));
    const std::unique_ptr<char, decltype(&g_free)> plain(g_uri_unescape_string(coded.c_str(), nullptr), &g_free);
    if (!plain) Refuse(text, field, Words("a % without two hexadecimal digits stands in it"));
    return plain.get();
}

// The same without blanks at the ends of name and address.
std::string Tidy(std::string_view text, Field field) {
    const std::size_t left = text.find('<');
    if (left == std::string_view::npos) return WithoutScheme(text, text, field);
    const std::string_view address = Trimmed(text.substr(left + 1, text.size() - left - 2));
    return std::string(Trimmed(text.substr(0, left))) + " <" + WithoutScheme(address, text, field) + '>';
}

// A plain name goes out as a quoted string with its backslash as it is, which would quote what stands behind it (RFC
// 5322 3.2.4), at the end the closing quote.
void CheckPlainName(const CAddress& address, std::string_view text, Field field) {
    const CString name = address.GetDisplayName();
    if (CLanguage::IsJapanese(name) || name.View().find('\\') == std::string_view::npos) return;
    Refuse(text, field, Words("a backslash in a plain name cannot be carried; leave it out"));
}

}  // namespace

CAddress AddressOf(const std::string& text, Missing missing, Field field) {
    (void)ToCodePage(text, Extent::Line, missing, {field});  // a fault is told by its column in what was typed
    const std::string_view shown = Trimmed(text);
    CheckForm(shown, field);
    CAddress address;
    address.FromText(ToCodePage(Tidy(shown, field), Extent::Line, missing, {field}));
    CheckMailAddress(address, shown, field);
    CheckPlainName(address, shown, field);
    DropQuotes(address);
    return address;
}

std::string MailAddressIn(const std::string& text, Field field) {
    return FromCodePage(AddressOf(text, Missing::Replace, field).GetMailAddress().View());
}

std::string ComparedAddress(std::string mailAddress) {
    for (std::size_t i = mailAddress.rfind('@'); i < mailAddress.size(); ++i)
        mailAddress[i] = g_ascii_tolower(mailAddress[i]);
    return mailAddress;
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
