// Iso2022: the seven-bit charsets of mail that switch by escape sequences (RFC 1468, RFC 1554 and their kin). libc's
// own know neither NEC's row 13 nor half-width kana in them, so double-byte runs go through the engine's JIS_SJIS.
// Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit::gateway {

// Whether text holds an escape sequence that begins Japanese characters.
bool HasIso2022Escapes(std::string_view text);

// The text as UTF-8. Single-byte mode comes back at each line end, as the charset demands. Bytes above 7F are
// half-width kana or code page 932. faults takes the number of places where bytes stand for nothing; U+FFFD stands
// there.
std::string Iso2022ToUtf8(std::string_view text, std::size_t& faults);

}  // namespace hostkit::gateway
