// Charsets: the bytes of a text as UTF-8, by the charset that was declared, or by what the bytes can be where nothing
// was declared or the declaration cannot be right. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit::gateway {

// Converts by exactly this charset, a name as mail uses it, in any case. The names of Japanese charsets mean what is
// sent under them: shift_jis code page 932, euc-jp its kin with NEC's and IBM's characters. faults grows by the number
// of places where bytes stand for nothing; U+FFFD stands there. An unknown charset gives "" and a fault for each byte.
std::string ToUtf8(std::string_view bytes, std::string_view charset, std::size_t& faults);

// Converts a text whose charset is declared, "" if it is not. The declaration is not believed where the bytes cannot be
// that; they are then judged for themselves: ISO-2022-JP by its escape sequences, UTF-8 if valid, code page 932 or
// EUC-JP if valid and likely, at last by uchardet, and windows-1252. faults as above, of what was taken in the end.
std::string TextToUtf8(std::string_view bytes, std::string_view declared, std::size_t& faults);

// Converts raw bytes of a header field, whose charset nobody declares. Between Japanese, Western and UTF-8 the bytes
// decide; any other charset is the one of the letter below, if they can be that.
std::string RawToUtf8(std::string_view bytes, std::string_view letter);

}  // namespace hostkit::gateway
