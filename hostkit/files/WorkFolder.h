// WorkFolder: a new folder that only this user can enter, for files that nobody is to keep. It goes with the files that
// are in it when the object does, or when the program ends before (see PendingFile for signals). One thread.
#pragma once

#include <filesystem>
#include <hostkit/files/PendingFile.h>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

class HOSTKIT_API WorkFolder {
public:
    // Makes it in the folder that TMPDIR names, else in /tmp. Throws Failure.
    WorkFolder();
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

// The folder for files that nobody is to keep, absolute: the one that TMPDIR names, else /tmp.
std::filesystem::path TemporaryFolder();

// The library's form of the folder, without a trailing separator. Throws Failure for one that it cannot name.
CString LibraryPathOf(const std::filesystem::path& folder);

// A folder of the user's that takes attachments: made if it is missing. Gives its library path. Throws Failure.
CString TargetFolder(const std::filesystem::path& folder);

}  // namespace hostkit
