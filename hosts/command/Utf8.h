// Utf8: UTF-8 by characters (RFC 3629: shortest form only, no surrogates, up to U+10FFFF). Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace utf8 {

struct Character {
    char32_t code = 0;
    std::size_t length = 0;  // bytes; 0: what stands there is not UTF-8
};

// The character that begins at offset, which must lie below the text's size.
Character CharacterAt(std::string_view text, std::size_t offset);

// Appends code, which must be a character that UTF-8 can hold.
void Append(std::string& text, char32_t code);

// Whether code is a control character, or one that hides or reorders what stands around it.
bool IsUnseen(char32_t code);

// The text as a terminal may get it, on one line: a control character, a character that is not seen or that turns the
// direction of writing, and a byte that is not UTF-8 are spelled (\x1B, \u202E), all else stays.
std::string Shown(std::string_view text);

// "U+1F600": how a character is named to a user.
std::string NameOf(char32_t code);

}  // namespace utf8
