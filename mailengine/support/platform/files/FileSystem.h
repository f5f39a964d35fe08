// FileSystem: searches, deletion and directories, for paths of code page 932 with backslashes. All of them look at a
// link itself, never at what it points to. An operation on an empty or null path fails. Any thread; a search handle
// belongs to one.
#pragma once

#include <cstdint>

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

namespace platform {

inline constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;

// One entry that a search found.
struct WIN32_FIND_DATAA {
    std::uint32_t dwFileAttributes = 0;  // FILE_ATTRIBUTE_DIRECTORY or, for all else, FILE_ATTRIBUTE_NORMAL
    CString cFileName;                   // the bare name; behind its directory and a backslash it names this entry
};

using HANDLE = std::intptr_t;
inline constexpr HANDLE INVALID_HANDLE_VALUE = -1;

// Starts a search and fills data with the first entry. In the last part of pattern a star stands for any characters, a
// question mark for one, and "*.*" for every name, with or without a dot; the case of letters counts. The two dot
// entries are names like others, and directories. Without a star or question mark pattern is the one path to look for.
// The handle goes to FindClose. INVALID_HANDLE_VALUE: nothing matches, and data is untouched.
MAILENGINE_API HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA& data);
// Fills data with the next entry. Entries deleted meanwhile do not disturb the search. 0: there are no more, and data
// is untouched.
MAILENGINE_API int FindNextFileA(HANDLE search, WIN32_FIND_DATAA& data);
// Ends a search. 0: search is no handle.
MAILENGINE_API int FindClose(HANDLE search);

// Deletes a file, or a link as such. 0: it failed; a directory is never deleted, nor is a device, which the whole
// machine may need: root would miss its /dev/null after a message that could not be saved there.
MAILENGINE_API int DeleteFileA(const char* path);
// Makes one directory. security stands for the window system's access record and must be null. 0: it failed; something
// stands at path or its parent is missing.
MAILENGINE_API int CreateDirectoryA(const char* path, const void* security);
// Removes an empty directory. 0: it failed; anything else, a link to a directory too, stays.
MAILENGINE_API int RemoveDirectoryA(const char* path);

// Whether two paths name one file, whatever their spelling; links are followed. 0: they name two, or one names none.
MAILENGINE_API int IsSameFile(const char* path, const char* other);

}  // namespace platform
