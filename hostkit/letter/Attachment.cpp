#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <hostkit/characters/CodePage.h>
#include <hostkit/letter/Attachment.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

namespace {

Place Named(const std::filesystem::path& path) {
    return {Field::Attachment, path.native()};
}

struct stat StatusOf(const std::filesystem::path& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) throw Failure(FailureKind::Input, Named(path), std::strerror(errno));
    return status;
}

// A pipe is refused too: the writer opens each file twice.
void CheckReadable(const std::filesystem::path& path) {
    if (!S_ISREG(StatusOf(path).st_mode))
        throw Failure(FailureKind::Input, Named(path), "is not a regular file; attach a copy of it");
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0)
        throw Failure(FailureKind::Input, Named(path), std::string("cannot be read: ") + std::strerror(errno));
}

void CheckName(const std::filesystem::path& path) {
    const std::filesystem::path name = path.filename();
    for (const char ch : name.native()) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte >= 0x20 && byte != 0x7F && byte != '"') continue;
        throw Failure(FailureKind::Value, Named(path),
                      std::string("its name holds a ") + (byte == '"' ? "double quote" : "control character") +
                          ", which a message cannot carry; give the file another name");
    }
}

}  // namespace

CMailDoc::FileInfo AttachmentOf(const std::filesystem::path& path) {
    CheckReadable(path);
    CheckName(path);
    CString inside;
    std::string error;
    if (!platform::ToLibraryPath(path.native(), inside, error))
        throw Failure(FailureKind::Uncarried, Named(path), error);
    CMailDoc::FileInfo file;
    file.Path = ToCarriedCodes(inside.View(), Named(path));
    return file;
}

void CheckAreNotTarget(const CMailDoc& doc, const OutputTarget& target) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    for (const CMailDoc::FileInfo& file : files) {
        const std::string path = platform::ToNativePath(file.Path);
        struct stat status;
        if (stat(path.c_str(), &status) == 0) target.CheckIsNot(status, Named(path));
    }
}

}  // namespace hostkit
