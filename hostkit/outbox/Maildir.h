// Maildir: a folder of messages as mail programs and servers share it, one file for each, which none of them ever sees
// half written. One thread.
#pragma once

#include <filesystem>
#include <hostkit/files/Descriptors.h>
#include <hostkit/files/PendingFile.h>
#include <memory>
#include <string>

namespace hostkit {

class Maildir {
public:
    // Makes the folder with its tmp, new and cur where nothing is there. Throws Failure, of the kind Target, for one
    // that is no Maildir or that this user cannot write to.
    explicit Maildir(const std::filesystem::path& folder);

    // A new message in tmp, open for writing, under a name that nothing else will have. It goes where it is not
    // delivered.
    class Message {
    public:
        // Throws Failure, of the kind Output.
        explicit Message(const std::filesystem::path& folder);

        int Descriptor() const { return m_file.Number(); }
        // Brings the bytes to the disk and the message into cur, with flags in the order of the alphabet ("S" for one
        // that was seen, "F" for one that wants attention). Throws Failure, of the kind Output.
        void Deliver(const std::string& flags);

    private:
        [[noreturn]] void Fail(int error) const;

        std::filesystem::path m_folder;
        std::string m_strName;
        std::unique_ptr<PendingFile> m_pPending;
        hostkit::Descriptor m_file;
    };

    Message NewMessage() const { return Message(m_folder); }
    const std::filesystem::path& Folder() const { return m_folder; }

private:
    std::filesystem::path m_folder;
};

}  // namespace hostkit
