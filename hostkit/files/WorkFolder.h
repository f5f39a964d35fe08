// WorkFolder: a new folder that only this user can enter, for files that nobody is to keep. It goes with the files that
// are in it when the object does, or when the program ends before (see PendingFile for signals). One thread.
#pragma once

#include <filesystem>
#include <hostkit/characters/Failure.h>
#include <hostkit/files/PendingFile.h>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

// The folder for files that nobody is to keep, absolute: the one that TMPDIR names, else /tmp.
HOSTKIT_API std::filesystem::path TemporaryFolder();

class HOSTKIT_API WorkFolder {
public:
    // Makes it in parent, an absolute path, which where names in a failure. Throws Failure.
    explicit WorkFolder(const std::filesystem::path& parent = TemporaryFolder(), const Place& where = {});
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder();

    std::filesystem::path Path() const { return m_folder.Path(); }
    // The same as the library wants it.
    const CString& LibraryPath() const { return m_strLibraryPath; }

private:
    PendingFile m_folder;
    CString m_strLibraryPath;
};

}  // namespace hostkit
