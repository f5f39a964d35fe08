// MessageList: the messages of a Maildir, a folder, an mbox or a single file, for a list on a screen. Their number is
// there at once, what is shown of each comes by and by, in steps that a program with windows takes when it has nothing
// else to do. Nothing is moved, marked or locked. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <hostkit/characters/Export.h>
#include <hostkit/gateway/Glance.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace hostkit {

class HOSTKIT_API MessageList {
public:
    struct Entry {
        std::filesystem::path file;
        std::size_t number = 0;  // in an mbox, from 1; 0 where the file is one message
        std::uint64_t at = 0;    // where in the file its bytes begin
        std::uint64_t size = 0;  // bytes, 0 before it was read
        bool isRead = false;     // before, glance is empty
        Glance glance;
        std::string fault;  // why it cannot be opened, in one line; empty if it can
    };

    // Lists the files, in the order of MessageSource. Of a folder that is no Maildir the first bytes of each file are
    // looked at. Throws Failure for a folder that cannot be read.
    explicit MessageList(const std::filesystem::path& path);
    MessageList(const MessageList&) = delete;
    MessageList& operator=(const MessageList&) = delete;
    ~MessageList();

    // An entry keeps its place. Those of an mbox come behind all others, as each is read.
    const std::vector<Entry>& Entries() const { return m_entries; }

    // Reads the header of the next entry that was not read, or the next message of an mbox, of which all bytes have to
    // be read. false: all is read. Throws nothing but std::bad_alloc: what cannot be read is the entry's fault.
    bool ReadNext();
    // The same for one entry, as the one that is being looked at. index lies inside.
    void Read(std::size_t index);
    // How much of the files was read, from 0 to 100.
    int Percent() const;

    // The message, byte for byte as its store has it, for OpenMail and its kin. Throws Failure for one that is gone,
    // for an mbox that was written to since, and for 2 GiB or more. index lies inside.
    std::string Message(std::size_t index) const;

private:
    class Mbox;

    bool ReadNextOfMbox();

    std::vector<Entry> m_entries;
    std::size_t m_nFiles = 0;  // the entries in front, each of which is a file
    std::size_t m_nNext = 0;   // none of them before it waits to be read
    std::size_t m_nRead = 0;   // of them
    std::vector<std::unique_ptr<Mbox>> m_mboxes;
    std::size_t m_nMbox = 0;  // the one that is being read
};

}  // namespace hostkit
