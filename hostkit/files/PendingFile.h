// PendingFile: a file or a folder that is to be gone if the program ends before its work does. An entry lists the name
// while it lives, and removes what has it at its own end. Entries may be made and ended in any thread, but
// RemovePendingFiles must not run in one while another ends an entry.
//
// Nothing here touches signals. A program that wants to leave nothing behind when one ends it installs a handler of its
// own that calls RemovePendingFiles; a program with a window need not.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>

namespace hostkit {

class PendingFile {
public:
    enum class Kind { File, Folder };  // a folder goes with the files directly in it

    // Lists the path, which has to stay valid when the program changes its folder. To be made before the file is, under
    // a name that nobody else will take: so there is no moment at which a signal would leave it.
    PendingFile(Kind kind, std::string path);
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    // Removes what still has the name.
    ~PendingFile();

    // What has the name is not, or no longer, ours.
    void Release();

    const std::string& Path() const { return m_strPath; }

    struct Entry;

private:
    std::string m_strPath;
    Entry* m_pEntry;
};

// Removes all that is listed. Safe in a signal handler; what the interrupted program does behind it is lost.
HOSTKIT_API void RemovePendingFiles() noexcept;

// Gives the file at from the path to, which nothing may have. 0, or -1 with errno: EEXIST if something does.
int MoveWithoutReplacing(const std::string& from, const std::string& to) noexcept;

// A name that nothing has, for a PendingFile: ".mailengine-NUMBER.tmp".
std::string NewFileName();

}  // namespace hostkit
