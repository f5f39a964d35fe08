// NewFile: a new file beside the one that it will replace. Whatever ends the work before Replace takes the file away
// (see PendingFile for signals). One thread.
#pragma once

#include <hostkit/files/PendingFile.h>
#include <memory>
#include <string>
#include <sys/stat.h>

namespace hostkit {

class NewFile {
public:
    // Makes the file in target's folder, under a name that nothing has. old, null if target does not exist, gives the
    // owner and the permission bits to keep; a new file gets those that the umask leaves. Throws Failure.
    NewFile(const std::string& target, const struct stat* old);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    // Open for writing; the file's own.
    int Descriptor() const { return m_nDescriptor; }
    // Brings the bytes to the disk and puts the file in the target's place, in one step. Throws Failure; the target
    // is then as it was.
    void Replace();

private:
    void MakeFile(mode_t mode);

    std::string m_strTarget;
    std::unique_ptr<PendingFile> m_pFile;
    int m_nDescriptor = -1;
};

}  // namespace hostkit
