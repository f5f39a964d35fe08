#include "InputFile.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "Failure.h"

namespace {

class CDescriptor {
public:
    explicit CDescriptor(const std::string& path)
        : m_nNumber(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;
    ~CDescriptor() {
        if (m_nNumber > STDERR_FILENO) close(m_nNumber);
    }
    int Number() const { return m_nNumber; }

private:
    int m_nNumber;
};

// Bytes read, 0 at the end, -1 with errno.
ssize_t ReadPiece(int descriptor, char* piece, std::size_t size) {
    for (;;) {
        const ssize_t count = read(descriptor, piece, size);
        if (count >= 0 || errno != EINTR) return count;
    }
}

}  // namespace

std::string ReadWhole(const std::string& path, std::size_t maxBytes) {
    const std::string shown = path == "-" ? "standard input" : path;
    const CDescriptor descriptor(path);
    std::string bytes;
    std::array<char, 64 * 1024> piece;
    for (;;) {
        const ssize_t count = descriptor.Number() < 0 ? -1 : ReadPiece(descriptor.Number(), piece.data(), piece.size());
        if (count < 0) throw CFailure(shown + ": cannot be read: " + std::strerror(errno));
        if (count == 0) return bytes;
        bytes.append(piece.data(), static_cast<std::size_t>(count));
        if (bytes.size() > maxBytes) {
            throw CFailure(shown + ": holds more than the " + std::to_string(maxBytes) + " bytes that can be taken");
        }
    }
}
