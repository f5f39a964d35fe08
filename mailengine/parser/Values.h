// Values: what the value of a field means: encoded words, the media type and its parameters, addresses. Values come
// unfolded and go as code page 932, but for text in another charset than ISO-2022-JP, which stays as the bytes it was.
// Stateless; any thread.
#pragma once

#include <string_view>

#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace parser {

// Replaces the encoded words (RFC 2047) in value. An incomplete word loses its "=?".
CString DecodeFieldValue(std::string_view value);

// The value of a Content-Type field taken apart; what it is without such a field.
struct ContentType {
    CString type = wire::kTextPlain;
    CString parameters = "charset=us-ascii";
};
ContentType SplitContentType(std::string_view value);

// Whether a media type, subtype included, is the one named, in any case of its letters.
bool IsType(const CString& type, std::string_view name);

// The decoded value of the first parameter of that name, without quotes; empty if there is none.
CString GetParameter(std::string_view parameters, std::string_view name);
// The value of the pieces name*0*, name*1* and so on (RFC 2231 3, 4), joined, and decoded if it is ISO-2022-JP.
CString GetNumberedParameter(std::string_view parameters, std::string_view name);
// The name that an entity gives itself as a file, by either of the two; empty: it is none.
CString GetFileName(std::string_view parameters);

// The next item of an address list: up to its comma, which a quoted string at its top hides. item is untrimmed on its
// right. The result is where the next one starts, -1 if there is no item; item then stays.
int NextAddress(std::string_view list, int start, std::string_view& item);
// Appends the addresses of a field's value, one text each, to list.
void AppendAddresses(CString value, CStringArray& list);

}  // namespace parser
