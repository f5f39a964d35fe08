// Descriptors: open files as the system knows them. Any thread.
//
// A path can name a descriptor of this program: /dev/stdout, /dev/fd/3, /proc/self/fd/3, a link to one of these.
// Opening it would open the file behind it anew, at its first byte and under its own name; so what such a path means is
// used through a second descriptor (dup), which shares the place that is reached and leaves the file where it is.
#pragma once

#include <filesystem>
#include <hostkit/characters/Export.h>
#include <optional>
#include <string_view>
#include <sys/types.h>
#include <utility>

namespace hostkit {

// A descriptor of this object's own; -1 is none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_nNumber(number) {}
    Descriptor(Descriptor&& other) noexcept : m_nNumber(std::exchange(other.m_nNumber, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_nNumber, other.m_nNumber);
        return *this;
    }
    ~Descriptor() { (void)Close(); }

    int Number() const { return m_nNumber; }
    explicit operator bool() const { return m_nNumber >= 0; }
    // 0, or the number (errno) of what the system found only now.
    int Close();

private:
    int m_nNumber;
};

// The number in a path that names a descriptor; -1 for one of another program. Empty: the path names none.
std::optional<int> DescriptorNamedBy(const std::filesystem::path& path);

// A second descriptor for the same open file. Empty, with errno: number is closed, or none is left.
Descriptor SecondFor(int number);
// The file at path, or the descriptor that it names, open for reading. Empty, with errno.
Descriptor OpenToRead(const std::filesystem::path& path);

// At most size bytes; 0 at the end, -1 with errno. All bytes of text; 0, or the number (errno) of the failure. Both
// wait where a descriptor that does not block would have them come again, and go on behind a signal.
ssize_t ReadSome(int descriptor, char* piece, std::size_t size);
HOSTKIT_API int WriteAll(int descriptor, std::string_view text);

}  // namespace hostkit
