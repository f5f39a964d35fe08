// EncodedWords: header text of today's mail as UTF-8: raw bytes of any charset, and the encoded words of RFC 2047 in
// it, also where they stand inside quotes, hold blanks, or split a character between two. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit::gateway {

enum class Words {
    Text,   // a subject: the words' text stands in their place
    Parts,  // addresses, parameters: it stands there as a quoted string, so that nothing in it counts as structure
};

// value is unfolded; letter is the charset of the text below, where it is known (RawToUtf8).
std::string DecodeWords(std::string_view value, Words words, std::string_view letter = "");

}  // namespace hostkit::gateway
