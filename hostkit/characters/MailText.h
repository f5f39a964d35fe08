// MailText: text that came out of a mail. The library gives code page 932, but passes the bytes of other charsets as
// they are, and its values can hold control characters. Stateless after the first call; one thread.
#pragma once

#include <hostkit/characters/CodePage.h>
#include <string>
#include <string_view>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

// The UTF-8 of text: the same bytes where they are UTF-8, else what code page 932 makes of them, with U+FFFD for what
// is neither. Control characters stay.
HOSTKIT_API std::string TextOf(std::string_view text);
// The same for a header or its summary, whose lines can be in different charsets: each is judged for itself.
HOSTKIT_API std::string HeaderTextOf(std::string_view text);

// TextOf, and nothing in it that a terminal would obey: a name or a subject as one line; a body as lines that end in
// LF, each CRLF or LF being one, with its TABs; the lines of a header in the same way.
HOSTKIT_API std::string LineShown(std::string_view text);
HOSTKIT_API std::string BodyShown(std::string_view text);
HOSTKIT_API std::string HeaderShown(std::string_view text);

// The text in code page 932, fit for a new mail: what is not seen is gone, but for the line ends and TABs of a letter,
// which become single blanks in a line; and 〓 stands for what a Japanese mail cannot carry, since nobody is there who
// could type something else. Throws Failure for a text that is too long.
HOSTKIT_API CString Carried(std::string_view text, Extent extent);

// A message of the library for the user, code page 932 of many lines, as one line of UTF-8: each run of line ends is a
// blank, none stands at the end.
HOSTKIT_API std::string OneLine(const CString& message);

}  // namespace hostkit
