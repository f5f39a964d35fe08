// AttachmentWatch: whether the attachments stay as they are while a mail is written. The writer reads each to its end,
// wherever that is by then: one that shrinks would go out cut, and one that grows as fast as it is read has no end. One
// thread.
#pragma once

#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <mailengine/writer/OutputStream.h>

namespace hostkit {

class AttachmentWatch {
public:
    struct File {
        std::string path;   // what is read
        std::string shown;  // what the user calls it
    };
    // Takes the sizes and times that hold. Throws Failure for a file that is gone.
    explicit AttachmentWatch(const std::vector<File>& files);

    // What the files make in a message, less than the whole of it.
    std::uint64_t ContentBytes() const;
    bool HasChanged() const;
    // Throws Failure, which names the file, if one is not as it was.
    void Check() const;

private:
    struct Watched {
        File file;
        struct stat status;
    };
    const Watched* FirstChanged() const;

    std::vector<Watched> m_files;
};

// A stream in front of another, which fails as soon as more comes than the sizes allow and a file has changed.
class WatchedStream : public COutputStream {
public:
    // All three live as long as the stream.
    WatchedStream(COutputStream& target, const AttachmentWatch& watch)
        : m_target(target), m_watch(watch), m_nNextLook(watch.ContentBytes()) {}

    [[nodiscard]] int Open() override { return m_target.Open(); }
    void Close() override { m_target.Close(); }
    [[nodiscard]] int WriteString(const char* text) override;

private:
    COutputStream& m_target;
    const AttachmentWatch& m_watch;
    std::uint64_t m_nBytes = 0;
    std::uint64_t m_nNextLook;
};

[[noreturn]] void RefuseChanged(const std::string& path);

}  // namespace hostkit
