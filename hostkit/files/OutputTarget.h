// OutputTarget: a place for a message. An existing file, also one behind a link, is replaced only by a whole message
// (NewFile); a descriptor, also one that a path names (Descriptors), a pipe or a device gets the message as it comes.
// One thread.
#pragma once

#include <filesystem>
#include <hostkit/characters/Failure.h>
#include <hostkit/files/DescriptorStream.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/files/NewFile.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace hostkit {

class HOSTKIT_API OutputTarget {
public:
    // Looks at path and makes nothing. Throws Failure for a folder, a link to nothing, a file that may not be written,
    // and for the file that standard output or standard error goes to: each would write over the other.
    explicit OutputTarget(const std::filesystem::path& path, Unkept unkept = Unkept::Refuse);
    // An open descriptor, which stays open, under a name for people. Throws Failure for one that cannot be written.
    OutputTarget(int descriptor, const std::string& name);
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;
    // Without a Commit before it, a file is as it was and nothing new stays.
    ~OutputTarget();

    // How the user named the place.
    const std::string& Name() const { return m_strShown; }

    // Throws Failure if the file status is that of the target, under whatever name: it would be read while it is
    // written.
    void CheckIsNot(const struct stat& status, const Place& where) const;

    // Opens the place. The stream is the target's, and lives as long. Throws Failure.
    COutputStream& Open();
    // Ends the message: every byte is out, and a file has its new content. Throws Failure.
    void Commit();
    // Throws Failure with the reason, if a hand-over failed; else returns.
    void CheckWritten() const;

private:
    void LookAtFile(const std::filesystem::path& path);
    void LookAtDescriptor(int number);
    void CheckIsNotStandard() const;
    bool IsTarget(const struct stat& status) const;

    std::string m_strShown;  // how the user named the place
    std::string m_strPath;   // the file itself, links followed; empty for a descriptor
    Unkept m_unkept = Unkept::Refuse;
    std::optional<struct stat> m_status;
    Descriptor m_straight;  // of a place that gets the message as it comes
    std::unique_ptr<NewFile> m_pFile;
    std::unique_ptr<DescriptorStream> m_pStream;
};

}  // namespace hostkit
