#include <mailengine/parser/Addresses.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/Scanning.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

// Offset of the double quote that ends the quoted string at the top of text, -1 if none. A backslash in front of a
// quote takes its meaning, but the second byte of a character is no backslash.
int FindClosingQuote(std::string_view text) {
    bool escaped = false;
    for (std::size_t at = 1, bytes = 1; at < text.size() && text[at] != 0; at += bytes) {
        bytes = platform::CharacterBytes(text, at);
        if (text[at] == '"' && !escaped) return static_cast<int>(at);
        escaped = bytes == 1 && text[at] == '\\';
    }
    return -1;
}

int NextAddress(std::string_view list, int start, std::string_view& item) {
    const std::string_view rest = TrimLeft(Mid(list, start));
    if (rest.empty()) return -1;
    const int closing = rest.starts_with('"') ? FindClosingQuote(rest) : -1;
    const int comma = Find(rest, ",", closing == -1 ? 0 : closing + 1);
    item = comma == -1 ? rest : Mid(rest, 0, comma);
    return comma == -1 ? LengthOf(list) : LengthOf(list) - LengthOf(rest) + comma + 1;
}

}  // namespace

bool ParseAddressField(std::string_view text, int top, std::string_view name, CStringArray& list) {
    CString value;
    int next = 0;
    if (!ParseFieldValue(text, top, name.size(), value, next)) return false;
    value += ',';
    std::string_view item;
    for (int at = 0; (at = NextAddress(value.View(), at, item)) != -1;)
        list.SetAtGrow(list.GetSize(), CString(Trim(item)));
    return true;
}

}  // namespace parser

int CEMailPerser::PerseAddressField(const CString& text, int topOfLine, const char* fieldName, CStringArray& list) {
    return parser::ParseAddressField(parser::TextOf(text), topOfLine, CString(fieldName).View(), list) ? 1 : 0;
}

int CEMailPerser::NextAddress(const CString& list, int start, CString& item) {
    std::string_view found;
    const int next = parser::NextAddress(parser::TextOf(list), start, found);
    if (next != -1) item = CString(found);
    return next;
}
