// CFileUtility: paths taken apart, sizes asked for and shown, texts made safe as file names. Paths are code page 932,
// and the backslash that is a whole character is their only separator: a slash is a character like others. A null path
// is an empty one. Stateless; any thread, any number of calls at once.
#pragma once

#include <cstdint>

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

class MAILENGINE_API CFileUtility {
public:
    CFileUtility() = delete;

    // The text behind the last backslash; the whole path without one.
    static CString GetFileNameFromPath(const char* path);
    // The text behind the last dot of the file name, in its own case; empty without one.
    static CString GetFileExt(const char* path);
    // The text before the last backslash; empty without one.
    static CString GetParentPath(const char* path);

    // 1 if a file, directory or link stands at path or, where its last part has a star or question mark, if anything
    // matches; else 0.
    static int Exists(const char* path);
    // Deletes a file, or a link as such. 0: it failed; directories and devices stay.
    static int DeleteFileA(const char* path);

    // The size in bytes; links are followed. 0 for a path that cannot be examined and for anything but a file, the
    // largest 32-bit number for a larger file.
    static std::int32_t GetFileSize(const char* path);
    // That size for people: in bytes if automaticUnit is 0, else as SizeAutoUnit shows it.
    static CString GetFileSizeString(const char* path, int automaticUnit);
    // A size of bytes for people: "1023バイト", "1KB" (cut, not rounded), "1.50MB", "1.00GB", by units of 1024.
    static CString SizeAutoUnit(std::int32_t size);

    // 1 if the first byte of line is '#', else 0. The line is not changed.
    static int IsCommentLine(CString& line);
    // What kind of file path names, for people: the extension, its ASCII letters in capitals, and " ファイル". Empty
    // without an extension. The file is not looked at.
    static CString GetMimeType(const char* path);
    // Puts an underscore for each of \ / : , ; * ? " < > | so that text names a file in its folder and no other. The
    // length stays. Dots, blanks and control characters stay too.
    static void ReplaceProhibitedWords(CString& text);
};
