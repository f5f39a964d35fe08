// Draft: a letter that is not finished, kept in a file of its own: a message would lose its blind copies, its parts and
// the paths of its attachments when it is opened again. One thread.
#pragma once

#include <filesystem>
#include <hostkit/letter/Letter.h>

namespace hostkit {

// Keeps every value of the letter in the file at path, as WritePrivateFile does: whole or not at all, and for this user
// alone. Nothing is checked, since what is not finished may be wrong. Attachments stay where they are; their paths are
// kept absolute. In a text, a NUL and bytes that are not UTF-8 become U+FFFD. Throws Failure.
HOSTKIT_API void SaveDraft(const Letter& letter, const std::filesystem::path& path);

// The letter in the file at path; its attachments need not be there any more. Throws Failure for a file that cannot be
// read, is no draft, or was written by a program that knows more than this one.
HOSTKIT_API Letter OpenDraft(const std::filesystem::path& path);

}  // namespace hostkit
