#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <hostkit/characters/CodePage.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/letter/Attachment.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mailengine/support/FileUtility.h>
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
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) throw Failure(FailureKind::Input, Named(path), std::string("cannot be read: ") + std::strerror(errno));
    // The library takes the same lock, and would ask whether the file was moved.
    if (flock(file.Number(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw Failure(FailureKind::Input, Named(path),
                      "is locked by another program; attach it when that is done, or a copy of it");
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

std::vector<CMailDoc::FileInfo> FilesOf(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    return files;
}

// The offset of the first NUL, -1 if there is none; what cannot be read is told by the writer.
std::int64_t OffsetOfNul(const std::filesystem::path& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
    std::vector<char> piece(64 * 1024);
    std::size_t bytes = 0;
    for (std::int64_t offset = 0; file && (bytes = std::fread(piece.data(), 1, piece.size(), file.get())) > 0;
         offset += static_cast<std::int64_t>(bytes)) {
        const auto* const nul = static_cast<const char*>(std::memchr(piece.data(), 0, bytes));
        if (nul != nullptr) return offset + (nul - piece.data());
    }
    return -1;
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

void CheckAttachments(const CMailDoc& doc) {
    for (const CMailDoc::FileInfo& file : FilesOf(doc))
        CheckReadable(platform::ToNativePath(file.Path));
}

void CheckAttachedMails(const CMailDoc& doc) {
    for (const CMailDoc::FileInfo& file : FilesOf(doc)) {
        if (CFileUtility::GetFileExt(file.Path) != "eml") continue;
        const std::filesystem::path path = platform::ToNativePath(file.Path);
        if (const std::int64_t offset = OffsetOfNul(path); offset != -1)
            throw Failure(FailureKind::Input, Named(path),
                          "holds a NUL at byte " + std::to_string(offset) +
                              ", behind which a part of it would be lost; attach it under another extension than eml");
    }
}

void CheckAreNotTarget(const CMailDoc& doc, const OutputTarget& target) {
    for (const CMailDoc::FileInfo& file : FilesOf(doc)) {
        const std::string path = platform::ToNativePath(file.Path);
        struct stat status;
        if (stat(path.c_str(), &status) == 0) target.CheckIsNot(status, Named(path));
    }
}

}  // namespace hostkit
