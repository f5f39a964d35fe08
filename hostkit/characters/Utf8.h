// Utf8: UTF-8 that is shown to somebody. Stateless; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>
#include <string_view>

namespace hostkit {

// Whether the whole text is UTF-8.
HOSTKIT_API bool IsUtf8(std::string_view text);

// Whether a character is not seen, by Unicode's own properties: a control or a format character (Cc, Cf: those that
// hide, reorder or mark what stands around them), or one that ends a line (Zl, Zp).
HOSTKIT_API bool IsUnseen(char32_t character);
// Whether readers of some kind begin a new line at it, or go to another column: from TAB to CR, U+0085, U+2028, U+2029.
HOSTKIT_API bool IsLineEnd(char32_t character);

// The text as a terminal may get it, on one line: a character that is not seen and a byte that is not UTF-8 are spelled
// (\x1B, \u202E), all else stays. Those that make one picture of an emoji sequence stay too: a joiner between two
// symbols, and the tags of a flag.
HOSTKIT_API std::string Shown(std::string_view text);

}  // namespace hostkit
