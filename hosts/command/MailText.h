// MailText: text that came out of a mail. The library gives code page 932, but passes the bytes of other charsets as
// they are, and its values can hold control characters. Stateless after the first call; one thread.
#pragma once

#include <string>
#include <string_view>

#include <mailengine/support/platform/text/String.h>

#include "Border.h"

namespace mailtext {

// The UTF-8 of text: the same bytes where they are UTF-8, else what code page 932 makes of them, with U+FFFD for what
// is neither. Control characters stay.
std::string Outside(std::string_view text);
// The same for a header or its summary, whose lines can be in different charsets: each is judged for itself.
std::string HeaderOutside(std::string_view text);

// Outside, and nothing in it that a terminal would obey: a name or a subject as one line; a body as lines that end in
// LF, each CRLF or LF being one, with its TABs; the lines of a header in the same way.
std::string LineShown(std::string_view text);
std::string BodyShown(std::string_view text);
std::string HeaderShown(std::string_view text);

// The text inside, fit for a new mail: control characters are gone, but for the line ends and TABs of a letter, and 〓
// stands for what a Japanese mail cannot carry, since nobody is there who could type something else. Throws CFailure
// for a text that is too long.
CString Carried(std::string_view text, border::Extent extent);

}  // namespace mailtext
