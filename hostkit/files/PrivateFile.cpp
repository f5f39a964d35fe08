#include <cerrno>
#include <cstdlib>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/files/NewFile.h>
#include <hostkit/files/PrivateFile.h>
#include <sys/stat.h>

namespace hostkit {

namespace {

constexpr mode_t kPrivate = 0600;

std::filesystem::path RealPath(const std::filesystem::path& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? std::filesystem::path(real.get()) : std::filesystem::absolute(path);
}

}  // namespace

void WritePrivateFile(const std::filesystem::path& path, std::string_view bytes) {
    const std::filesystem::path file = RealPath(path);
    struct stat old;
    const bool isThere = stat(file.c_str(), &old) == 0;
    if (file.filename().empty() || (isThere && !S_ISREG(old.st_mode)))
        throw Failure(FailureKind::Target, {Field::None, path.native()}, Words("is no file that can be written"));
    old.st_mode = S_IFREG | kPrivate;
    NewFile made(file.native(), path.native(), isThere ? &old : nullptr, Unkept::Refuse);
    int error = fchmod(made.Descriptor(), kPrivate) == 0 ? 0 : errno;
    if (error == 0) error = WriteAll(made.Descriptor(), bytes);
    if (error != 0)
        throw Failure(FailureKind::Output, {Field::None, path.native()},
                      Words("cannot be written: {1}; nothing was changed", SystemWords(error)));
    made.TakePlace();
}

}  // namespace hostkit
