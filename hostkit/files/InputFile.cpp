#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/files/InputFile.h>
#include <unistd.h>

namespace hostkit {

namespace {

class OpenFile {
public:
    explicit OpenFile(const std::filesystem::path& path)
        : m_nDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (m_nDescriptor >= 0) close(m_nDescriptor);
    }
    int Descriptor() const { return m_nDescriptor; }

private:
    int m_nDescriptor;
};

// Bytes read, 0 at the end, -1 with errno.
ssize_t ReadPiece(int descriptor, char* piece, std::size_t size) {
    for (;;) {
        const ssize_t count = read(descriptor, piece, size);
        if (count >= 0 || errno != EINTR) return count;
    }
}

}  // namespace

std::string ReadWhole(const std::filesystem::path& path, std::size_t maxBytes) {
    return ReadWhole(OpenFile(path).Descriptor(), path.native(), maxBytes);
}

std::string ReadWhole(int descriptor, const std::string& name, std::size_t maxBytes) {
    std::string bytes;
    std::array<char, 64 * 1024> piece;
    for (;;) {
        const ssize_t count = descriptor < 0 ? -1 : ReadPiece(descriptor, piece.data(), piece.size());
        if (count < 0)
            throw Failure(FailureKind::Input, {Field::None, name},
                          std::string("cannot be read: ") + std::strerror(errno));
        if (count == 0) return bytes;
        bytes.append(piece.data(), static_cast<std::size_t>(count));
        if (bytes.size() > maxBytes)
            throw Failure(FailureKind::Input, {Field::None, name},
                          "holds more than the " + std::to_string(maxBytes) + " bytes that can be taken");
    }
}

}  // namespace hostkit
