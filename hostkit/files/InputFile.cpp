#include <array>
#include <cerrno>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/files/InputFile.h>

namespace hostkit {

namespace {

[[noreturn]] void Refuse(const std::string& name) {
    const int error = errno;
    throw Failure(FailureKind::Input, {Field::None, name}, Words("cannot be read: {1}", SystemWords(error)));
}

}  // namespace

std::string ReadWhole(const std::filesystem::path& path, std::size_t maxBytes) {
    const Descriptor file = OpenToRead(path);
    if (!file) Refuse(path.native());
    return ReadWhole(file.Number(), path.native(), maxBytes);
}

std::string ReadWhole(int descriptor, const std::string& name, std::size_t maxBytes) {
    std::string bytes;
    std::array<char, 64 * 1024> piece;
    for (;;) {
        const ssize_t count = ReadSome(descriptor, piece.data(), piece.size());
        if (count < 0) Refuse(name);
        if (count == 0) return bytes;
        bytes.append(piece.data(), static_cast<std::size_t>(count));
        if (bytes.size() > maxBytes)
            throw Failure(FailureKind::Input, {Field::None, name},
                          Words("holds more than the {1} bytes that can be taken", maxBytes));
    }
}

}  // namespace hostkit
