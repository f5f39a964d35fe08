// Unicode: the one place that knows UTF-8 and which characters the codes of code page 932 stand for. Any thread; the
// first call that needs the tables asks libc for them, for which it opens a file.
//
// UTF-8 is that of RFC 3629: shortest form only, no surrogates, up to U+10FFFF.
//
// Out of the codes that code page 932 has for one character, the one that ISO-2022-JP can carry is taken: JIS X 0208
// where the character stands there, else NEC's row 13 (lead byte 87), else NEC's selection of the IBM extension (ED,
// EE). IBM's own codes (FA to FC), which other programs write, would be lost on the way through a mail. Reading turns
// every code into the same character. The user-defined characters (F0 to F9) have codes that no mail carries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <mailengine/support/platform/base/Export.h>

namespace platform {

inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

struct Character {
    char32_t code = kNoCharacter;
    std::size_t bytes = 1;  // that it takes in its text, never 0
};

// The character that begins at offset at of a text, which must lie inside; kNoCharacter for one byte that is not UTF-8,
// and for a byte or a pair that code page 932 gives no character for.
MAILENGINE_API Character Utf8CharacterAt(std::string_view text, std::size_t at);
MAILENGINE_API Character CodePageCharacterAt(std::string_view text, std::size_t at);

// Appends the character, which must be one that UTF-8 can hold.
MAILENGINE_API void AppendUtf8(std::string& text, char32_t character);

// The code of a character, the lead byte high where it has two bytes; -1 if code page 932 has none, and, for a carried
// code, if ISO-2022-JP cannot carry it.
MAILENGINE_API int CodeOf(char32_t character);
MAILENGINE_API int CarriedCodeOf(char32_t character);
MAILENGINE_API void AppendCode(std::string& text, int code);

// "U+1F600": how a character is named to a user.
MAILENGINE_API std::string NameOf(char32_t character);

// 0, or the number (errno) of what keeps libc from giving the tables; then only ASCII has characters and codes.
MAILENGINE_API int CodePageError();

}  // namespace platform
