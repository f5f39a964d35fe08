// NewFile: a file that is made whole before anybody sees it. It has no name until then where the file system can do so
// (O_TMPFILE), and nothing of it is left however the work ends; elsewhere it has one beside the target, which goes with
// the object (see PendingFile for signals). One thread.
#pragma once

#include <hostkit/files/Descriptors.h>
#include <hostkit/files/PendingFile.h>
#include <memory>
#include <string>
#include <sys/stat.h>

namespace hostkit {

// What becomes of a file whose owner, group, permissions or access list a new file could not have, or whose place it
// could not take, as that of a file that is mounted there.
enum class Unkept {
    Refuse,
    WriteInPlace,  // its bytes are replaced at the end; what stops that in the middle leaves neither old nor new whole
};

class NewFile {
public:
    // A file to take target's place, an absolute path that name stands for in a failure. old is what stands there,
    // which gives owner, group, permissions (the set-id bits too), access list and the attributes that a user set;
    // null: nothing does, and the umask and the folder give them. Throws Failure.
    NewFile(const std::string& target, const std::string& name, const struct stat* old, Unkept unkept);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() = default;

    // Open for writing; the object's own.
    int Descriptor() const { return m_file.Number(); }
    // Brings the bytes to the disk and puts the file in the target's place, in one step; a target that was not there
    // must not be there now. Nothing can fail behind that step. Throws Failure; the target is then as it was, but for
    // one that was to be written in place.
    void TakePlace();

private:
    bool Make(const std::string& folder, mode_t mode);
    bool KeepsAllOf(const struct stat& old) const;
    bool LinkToTarget();
    bool MoveToTarget();
    void CopyIntoTarget();
    [[noreturn]] void Fail(int error, const char* sentence) const;

    std::string m_strTarget;
    std::string m_strName;
    bool m_bReplaces;
    bool m_bMayWriteInPlace = false;
    bool m_bInPlace = false;
    hostkit::Descriptor m_file;
    std::unique_ptr<PendingFile> m_pNamed;  // null while the file has no name
};

}  // namespace hostkit
