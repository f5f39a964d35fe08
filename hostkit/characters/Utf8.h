// Utf8: UTF-8 that is shown to somebody. Stateless; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>
#include <string_view>

namespace hostkit {

// Whether the whole text is UTF-8.
HOSTKIT_API bool IsUtf8(std::string_view text);

// Whether a character is a control character, or one that hides or reorders what stands around it.
HOSTKIT_API bool IsUnseen(char32_t character);

// The text as a terminal may get it, on one line: a control character, a character that is not seen or that turns the
// direction of writing, and a byte that is not UTF-8 are spelled (\x1B, \u202E), all else stays.
HOSTKIT_API std::string Shown(std::string_view text);

}  // namespace hostkit
