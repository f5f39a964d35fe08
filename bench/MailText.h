// MailText: Japanese text to measure with, the same in every run.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

// Converts bytes between charsets by libc's iconv; ends the program if they cannot be converted.
std::string Convert(const std::string& bytes, const char* to, const char* from);

// At least bytes bytes of code page 932: the lines of a mail in CRLF, Japanese sentences with figures, addresses and
// English words between.
std::string MixedText(std::size_t bytes);
// The same with half-width kana, some with voiced marks.
std::string MixedTextWithKana(std::size_t bytes);
// Bytes without a pattern.
std::string AnyBytes(std::size_t bytes);

}  // namespace bench
