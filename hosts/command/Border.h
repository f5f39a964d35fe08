// Border: where UTF-8 (arguments, standard input, files of text, the terminal) becomes the code page 932 of the library
// and back. No other file of the command converts. Stateless after the first call has made the tables; one thread.
//
// Out of the codes that code page 932 has for one character the border takes the one that ISO-2022-JP can carry: JIS X
// 0208 where the character stands there, else NEC's row 13 (lead byte 87), else NEC's selection of the IBM extension
// (ED, EE). IBM's own codes (FA to FC), which other programs write, would be lost when the mail is read. Reading turns
// every code into the same character.
//
// Some characters have two forms in Unicode: other systems type the one that code page 932 does not have. The border
// takes these for their cousins, which then is what comes back:
//   U+301C wave dash -> U+FF5E ～    U+2212 minus -> U+FF0D －     U+2016 double line -> U+2225 ∥
//   U+2014 em dash -> U+2015 ―       U+00A2 cent -> U+FFE0 ￠      U+00A3 pound -> U+FFE1 ￡
//   U+00AC not -> U+FFE2 ￢          U+00A6 bar -> U+FFE4 ￤       U+00A5 yen -> U+FFE5 ￥
//   U+203E overline -> U+FFE3 ￣     U+00B7 dot -> U+30FB ・       U+00A0 no-break blank -> blank
#pragma once

#include <string>
#include <string_view>

#include <mailengine/support/platform/text/String.h>

namespace border {

enum class Extent {
    Line,    // a name, an address, a subject: no control character at all, so that nothing can end a header field
    Letter,  // many lines: CR, LF and TAB may stand in it, and each line end (CR, LF or CRLF) becomes CRLF
};
enum class Missing {
    Refuse,   // a character that a mail cannot carry ends the conversion
    Replace,  // 〓 takes its place
};

// The text inside. what names the text in an error. Throws CFailure, with line and column counted in characters from
// 1, at a character that a Japanese mail cannot carry (unless replaced), at one that extent forbids, at a byte that is
// not UTF-8, and for a text of more than kMaxTextBytes.
CString ToInside(std::string_view utf8, Extent extent, Missing missing, const std::string& what);
inline constexpr std::size_t kMaxTextBytes = 256u << 20;  // lengths inside are int, and conversions multiply them

// The UTF-8 of a text inside; U+FFFD for bytes that code page 932 gives no character for.
std::string ToOutside(std::string_view inside);

// The same characters in codes that ISO-2022-JP can carry; a text that came from elsewhere may use others. A
// user-defined character (lead byte F0 to F9) has no such code: CFailure names it, and what as its place.
CString ToCarriedCodes(std::string_view inside, const std::string& what);

}  // namespace border
