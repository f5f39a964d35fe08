// MessageSource: the messages of a file, an mbox, a Maildir or a folder, one at a time and byte for byte. Memory holds
// one message and, of a folder, the names. Nothing is moved, marked or locked. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <hostkit/characters/Export.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace hostkit {

class HOSTKIT_API MessageSource {
public:
    struct Message {
        std::filesystem::path file;  // where it stands
        std::string name;            // for people: the file, and the number if there may be more in it
        std::size_t number;          // in the whole source, from 1
        std::string bytes;
        std::uint64_t begin = 0;  // where the bytes begin in the file
    };

    // A file is one message, or an mbox if it begins with "From ": each line that does so then begins a message, which
    // is given without that line and the empty line in front of the next. A folder with the folders new and cur is a
    // Maildir: the files in new, then those in cur, each one message. Any other folder gives its regular files, mboxes
    // too, not those below. Files come by name in the order of bytes, names with a dot in front are left out. Throws
    // Failure for a folder that cannot be read.
    explicit MessageSource(const std::filesystem::path& path);
    // The same for what an open descriptor gives, which stays open and has a name for people.
    MessageSource(int descriptor, const std::string& name);
    MessageSource(const MessageSource&) = delete;
    MessageSource& operator=(const MessageSource&) = delete;
    ~MessageSource();

    // Whether it can hold many messages: a folder, or, once Next was called, an mbox.
    bool HoldsMany() const { return m_bMany; }
    // The files that it was given, in their order, and whether they are those of a Maildir.
    const std::vector<std::filesystem::path>& Files() const { return m_files; }
    bool IsMaildir() const { return m_bMaildir; }
    // The next message; empty at the end. Throws Failure for one that cannot be read or has 2 GiB or more; the next
    // call goes on behind it.
    std::optional<Message> Next();

private:
    class Stream;

    bool OpenNext();
    void AddFolder(const std::filesystem::path& folder);

    std::vector<std::filesystem::path> m_files;
    std::size_t m_nNext = 0;
    std::unique_ptr<Stream> m_pStream;  // of the file that is being read
    std::size_t m_nLast = 0;            // the number of the message that was given last
    bool m_bMany = false;
    bool m_bMaildir = false;
};

}  // namespace hostkit
