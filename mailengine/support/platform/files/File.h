// CFile: one open file of bytes, read or written from its first byte on, in buffers of 64 KiB. Paths are code page 932
// with backslashes. One file belongs to one thread at a time.
//
// Writing keeps a promise: a Write that came back without an exception stands for bytes that are in the file or that
// the file system holds room for. Only such bytes wait in the buffer. Where no room can be had ahead (a device, a pipe,
// a file system that gives none, a disk or a file size limit nearly reached) each Write goes through to the system, so
// the one that does not fit is the one that raises. The first Write does so everywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include <mailengine/support/platform/base/Exception.h>
#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/files/FileStatus.h>

class MAILENGINE_API CFile {
public:
    // Flags of Open, or-ed together. Reading is modeRead | shareDenyNone | typeBinary (0x8040); writing is modeCreate |
    // modeWrite | typeBinary (0x9001), and with createNew for a file that must not be there yet.
    enum OpenFlags : unsigned int {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        shareDenyNone = 0x0040,  // others may read and write meanwhile
        modeCreate = 0x1000,     // make the file, or empty the one that is there; goes with modeWrite
        typeBinary = 0x8000,     // no text translation; there is none without it either
        createNew = 0x10000      // with modeCreate: fail if anything stands at the path, a dangling link too
    };

    CFile() = default;
    // Closes a file that is still open; a last flush that fails goes unseen here, so call Close.
    ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // Opens path. A regular file that is written is locked against every other CFile, one that is read against those
    // that write, by an advisory lock that other programs need not heed. The file is not handed to programs that the
    // process starts. 0: this object is open already, the flags are none of the sets above, path is a directory, is
    // written elsewhere, or cannot be opened; platform::GetLastError() tells which and error, if given, receives the
    // same number. A FIFO is refused for reading, since it would wait for a writer without end, and for writing while
    // nobody reads it.
    [[nodiscard]] int Open(const char* path, unsigned int flags, CFileException* error = nullptr);

    // Copies the next bytes, at most count, to buffer. The result is their number, below count only at the end, 0
    // there. Raises a CFileException if the system cannot read, or the file is not open for reading.
    unsigned int Read(void* buffer, unsigned int count);

    // Appends all count bytes of data or raises a CFileException; then a part of them may have been written. No signal
    // reaches the host for a file size limit or a pipe without a reader.
    void Write(const void* data, std::size_t count) {
        if (count == 0) return;
        if (m_end + count <= m_room) {
            std::memcpy(m_buffer.get() + m_end, data, count);
            m_end += count;
        } else {
            Append(static_cast<const char*>(data), count);
        }
    }

    // Closes the file; does nothing to a closed one. Raises a CFileException if bytes taken before could not be
    // written; the file is closed then, too.
    void Close();

    // Fills status for what stands at path, links followed. 0: path cannot be examined and status is untouched.
    static int GetStatus(const char* path, CFileStatus& status);

private:
    int OpenForReading(const char* path);
    int OpenForWriting(const char* path, bool isNew);
    std::size_t Room() const;
    int PromiseRoom();
    void Append(const char* data, std::size_t count);
    int TryAppend(const char* data, std::size_t count);
    int Flush();
    int WriteThrough(const char* data, std::size_t count);
    std::size_t ReadSome(char* buffer, std::size_t count);
    std::size_t ReadThrough(char* buffer, std::size_t count);
    int MakeBuffer();

    int m_descriptor = -1;
    bool m_writes = false;
    bool m_promises = false;           // whether room may be asked for
    std::unique_ptr<char[]> m_buffer;  // made by the first Read or Write that needs it
    std::size_t m_begin = 0;           // of the bytes in the buffer; always 0 when writing
    std::size_t m_end = 0;
    std::size_t m_room = 0;       // bytes of the buffer that the file system holds room for; 0 when reading
    std::int64_t m_position = 0;  // bytes handed to the system
    std::int64_t m_promised = 0;  // offset up to which the file system holds room
};

namespace platform {

// Whether the Open with createNew that just failed in this thread failed because its path is taken.
MAILENGINE_API bool LastOpenFoundPathTaken();
// Whether the Open that just failed in this thread failed because a CFile or another program holds a lock on the file,
// so that a second try may succeed.
MAILENGINE_API bool LastOpenFoundFileLocked();

}  // namespace platform
