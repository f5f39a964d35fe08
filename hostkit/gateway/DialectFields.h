// DialectFields: whether the engine reads a field of a header as it was meant, and what the Content fields that it does
// read say. Values are as they stand in the message. Stateless; any thread.
#pragma once

#include <hostkit/gateway/entities/Fields.h>
#include <string>
#include <string_view>

namespace hostkit::gateway {

// Japanese text as the engine converts it: RFC 1468 to the letter, no half-width kana, nothing above 7E.
bool IsCleanJis(std::string_view bytes);
// ASCII without escape sequences.
bool IsCleanAscii(std::string_view bytes);

// Whether header is block to the byte: each line is a field or its continuation, of printable ASCII, down to an empty
// line that ends at bodyTop.
bool IsStrictBlock(std::string_view block, const Header& header, std::size_t bodyTop);

// Whether the fields that the engine reads of a message come out right: at most one of each, folded only where its
// unfolding does no harm, encoded words of ISO-2022-JP alone, addresses without groups, comments and odd quotes.
bool AreCleanFields(const Header& header);

struct DialectContent {
    std::string type = "text/plain";  // in small letters
    std::string charset;              // in small letters
    std::string boundary;
    std::string name;               // as it stands, words not decoded
    std::string encoding = "7bit";  // in small letters
    bool isNamedOtherwise = false;  // Content-Disposition has a name, and Content-Type has another or none
    bool isAttachment = false;
};

// What the Content fields say; false if the engine would not find them, or take them for something else.
bool ReadDialectContent(const Header& header, DialectContent& content);

}  // namespace hostkit::gateway
