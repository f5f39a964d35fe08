// Path: the one place that turns a library path into the machine's own and back. Stateless; any thread.
//
// A library path is code page 932 and its separator is the backslash that is a whole character; one inside a character
// of two bytes (as in the katakana SO) separates nothing. The machine's path is UTF-8 with slashes. A slash passes.
//
// A byte that code page 932 gives no character for, 0xHH, becomes the private-use character U+F700 + 0xHH, and so does
// the second byte of a pair that is not assigned, whatever it is. So every library path names one file, never one in
// another folder than its backslashes and slashes say, and two paths name two files unless they hold the same
// characters. (Some characters have two or three codes; all name the same file. On the way back each gets the code that
// a mail can carry, see Unicode.h, where it has one.)
//
// A name on disk that code page 932 cannot hold must still be one that the library can delete. Each byte 0xHH that
// resists is spelled 0xFF 0xFF and two capital hexadecimal digits. Only bytes above 0x7F and the backslash are spelled
// so: no spelling makes a separator or a dot.
#pragma once

#include <string>
#include <string_view>

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

namespace platform {

// The machine's form of a library path, up to its NUL. A null path is an empty one.
MAILENGINE_API std::string ToNativePath(const char* path);

// Makes path the library's form of a native path; ToNativePath(path) gives exactly native again. For hosts: what a user
// typed or chose. 0: no library path can stand for it, since it holds a character that code page 932 lacks or only has
// in another form, bytes that are not UTF-8, a NUL, or a backslash inside a name. Then error is a line of UTF-8 that
// names the first such character, and path is untouched; a success leaves error untouched.
[[nodiscard]] MAILENGINE_API int ToLibraryPath(std::string_view native, CString& path, std::string& error);

// The library's form of any name on disk; ToNativePath gives exactly that name again.
MAILENGINE_API CString ToLibraryName(std::string_view nativeName);

}  // namespace platform
