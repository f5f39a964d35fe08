// Fields: a header block of any message taken apart (RFC 5322 2.2), as leniently as mail is written: lines
// of an mbox on top, blanks before a colon, a body that begins without an empty line. Lines end in CRLF or LF.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

struct Field {
    std::string_view name;
    std::string_view raw;  // behind the colon, with its folds and without its last line end
};

// Views into the text that was read.
struct Header {
    std::vector<Field> fields;

    // The first field of that name, in any case of its letters; null if there is none.
    const Field* Find(std::string_view name) const;
};

// Where the header of a message begins: behind a byte order mark, empty lines and the line of an mbox.
std::size_t TopOfMessage(std::string_view text);

// Reads the block at the top of text. bodyTop takes the offset behind its empty line, or of the first line that cannot
// stand in a header.
Header ReadHeader(std::string_view text, std::size_t& bodyTop);

// A field body with each fold as one blank, without white space at its ends.
std::string Unfold(std::string_view raw);

bool EqualNames(std::string_view a, std::string_view b);

}  // namespace hostkit::gateway
