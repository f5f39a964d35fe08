// Letter: the sample mail that the libraries write and read, in one charset.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bench {

struct Letter {
    std::string fromName, fromAddress, toName, toAddress, subject, body;

    bool operator==(const Letter&) const = default;
};

// A small Japanese mail in UTF-8. Each number below 10,000 has its own subject, which fits one encoded word: GMime
// loses what stands in a second one behind padding.
Letter SmallLetter(std::size_t number);

// The letter in another charset, by libc's iconv.
Letter Convert(const Letter& letter, const char* to, const char* from);

}  // namespace bench
