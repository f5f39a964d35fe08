// CTemporaryFile: a new file beside the one that it will replace. Whatever ends the work before Replace, be it a
// failure or one of the signals SIGINT, SIGTERM and SIGHUP, takes the file away. One at a time; one thread.
#pragma once

#include <string>
#include <sys/stat.h>

class CTemporaryFile {
public:
    // Makes the file in target's folder, under a name that nothing has. old, null if target does not exist, gives the
    // owner and the permission bits to keep; a new file gets those that the umask leaves. Throws CFailure.
    CTemporaryFile(const std::string& target, const struct stat* old);
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;
    ~CTemporaryFile();

    // Open for writing; the file's own.
    int Descriptor() const { return m_nDescriptor; }
    // Brings the bytes to the disk and puts the file in the target's place, in one step. Throws CFailure; the target
    // is then as it was.
    void Replace();

private:
    void MakeFile(mode_t mode);

    std::string m_strTarget;
    std::string m_strPath;
    int m_nDescriptor = -1;
};
