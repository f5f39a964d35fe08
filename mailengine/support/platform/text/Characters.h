// Characters: the one place that knows what a character of code page 932 is, and the searches and
// compares that step by whole characters. Stateless; any thread, any number of calls at once.
//
// A character of two bytes is a lead byte followed by a trail byte. A lead byte before anything else is a
// character of one byte, so raw UTF-8 or Latin-1 in a message never swallows the CR of a line end.
#pragma once

#include <cstddef>
#include <string_view>

#include <mailengine/support/platform/base/Export.h>

namespace platform {

// Whether byte can begin a character of two bytes, and whether it can end one.
constexpr bool IsLeadByte(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

constexpr bool IsTrailByte(unsigned char byte) {
    return byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
}

// The bytes, 1 or 2, of the character at offset at, which must lie inside text.
constexpr std::size_t CharacterBytes(std::string_view text, std::size_t at) {
    const bool pair = at + 1 < text.size() && IsLeadByte(static_cast<unsigned char>(text[at])) &&
                      IsTrailByte(static_cast<unsigned char>(text[at + 1]));
    return pair ? 2 : 1;
}

// Offset of the first match of needle at or behind from, std::string_view::npos if none. A match is made of whole
// characters, which are counted from the first byte of text; a NUL is a byte like any other. An empty needle
// matches at from. Linear in the distance to the match.
MAILENGINE_API std::size_t FindText(std::string_view text, std::string_view needle, std::size_t from = 0);

// FindText from the first byte of text that stops at a NUL: what lies behind one is not searched. Its cost grows with
// the distance to the match or NUL, not with the rest of the text.
MAILENGINE_API std::size_t FindTextBeforeNul(std::string_view text, std::string_view needle);

// Offset of the last character of text that is the one byte ch, std::string_view::npos if none.
MAILENGINE_API std::size_t FindLastCharacter(std::string_view text, char ch);

// Whether a and b are equal but for the case of ASCII letters that are whole characters: a trail byte that
// has the value of a letter must be equal to the bit.
MAILENGINE_API bool EqualIgnoringCase(std::string_view a, std::string_view b);

// The C runtime's compares of NUL-terminated texts, 0 if they are equal: exact bytes, and as EqualIgnoringCase.
// A null pointer is an empty text.
MAILENGINE_API int mbscmp(const char* a, const char* b);
MAILENGINE_API int mbsicmp(const char* a, const char* b);

}  // namespace platform
