// CodePage: where UTF-8 becomes the code page 932 of the library and back, with codes that ISO-2022-JP can carry (see
// mailengine/support/platform/text/Unicode.h). Stateless; any thread.
//
// Some characters have two forms in Unicode: other systems type the one that code page 932 does not have. These are
// taken for their cousins, which then is what comes back:
//   U+301C wave dash -> U+FF5E ～    U+2212 minus -> U+FF0D －     U+2016 double line -> U+2225 ∥
//   U+2014 em dash -> U+2015 ―       U+00A2 cent -> U+FFE0 ￠      U+00A3 pound -> U+FFE1 ￡
//   U+00AC not -> U+FFE2 ￢          U+00A6 bar -> U+FFE4 ￤       U+00A5 yen -> U+FFE5 ￥
//   U+203E overline -> U+FFE3 ￣     U+00B7 dot -> U+30FB ・       U+00A0 no-break blank -> blank
#pragma once

#include <hostkit/characters/Failure.h>
#include <string>
#include <string_view>
#include <vector>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

enum class Extent {
    Line,    // a name, an address, a subject: no control character at all, so that nothing can end a header field
    Letter,  // many lines: CR, LF and TAB may stand in it, and each line end (CR, LF or CRLF) becomes CRLF
};
enum class Missing {
    Refuse,   // a character that a mail cannot carry ends the conversion
    Replace,  // 〓 takes its place
};

// The text in code page 932. Throws Failure, with line and column set in where, at a character that a Japanese mail
// cannot carry (unless replaced), at one that extent forbids, at a byte that is not UTF-8, and for a text of more than
// kMaxTextBytes.
HOSTKIT_API CString ToCodePage(std::string_view utf8, Extent extent, Missing missing, const Place& where);
inline constexpr std::size_t kMaxTextBytes = 256u << 20;  // lengths inside are int, and conversions multiply them

// Where the characters of a letter stand that a Japanese mail cannot carry, and all else that ToCodePage would refuse;
// the name is empty. For a program that marks them as they are typed.
HOSTKIT_API std::vector<Place> UncarriedIn(std::string_view utf8);

// The UTF-8 of a text in code page 932; U+FFFD for bytes that it gives no character for.
HOSTKIT_API std::string FromCodePage(std::string_view text);

// The same characters in codes that ISO-2022-JP can carry; a text that came from elsewhere may use others. Throws
// Failure at a user-defined character (lead byte F0 to F9), which has no such code.
HOSTKIT_API CString ToCarriedCodes(std::string_view text, const Place& where);

}  // namespace hostkit
