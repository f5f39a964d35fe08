#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/letter/AttachmentCopies.h>
#include <hostkit/letter/AttachmentWatch.h>
#include <sys/stat.h>

#include <mailengine/support/FileUtility.h>
#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

namespace {

[[noreturn]] void Refuse(const std::string& path, int error) {
    throw Failure(FailureKind::Input, {Field::Attachment, path},
                  std::string("cannot be copied: ") + std::strerror(error));
}

bool IsUnsized(const std::string& path) {
    struct stat status;
    char byte = 0;
    if (stat(path.c_str(), &status) != 0 || status.st_size != 0) return false;
    const Descriptor file = OpenToRead(path);
    return file && ReadSome(file.Number(), &byte, 1) > 0;
}

// Not more than the file had when it was opened, where it told: one that grows as fast as it is read has no end.
void Copy(const std::string& from, const std::string& to) {
    const Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    const Descriptor target(open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    struct stat status;
    if (!source || !target || fstat(source.Number(), &status) != 0) Refuse(from, errno);
    std::array<char, 64 * 1024> piece;
    off_t copied = 0;
    for (ssize_t count = 1; count > 0 && (status.st_size == 0 || copied <= status.st_size); copied += count) {
        count = ReadSome(source.Number(), piece.data(), piece.size());
        const int error =
            count < 0 ? errno : WriteAll(target.Number(), {piece.data(), static_cast<std::size_t>(count)});
        if (error != 0) Refuse(from, error);
    }
    if (status.st_size != 0 && copied != status.st_size) RefuseChanged(from);
}

}  // namespace

AttachmentCopies::AttachmentCopies(CMailDoc& doc, Copied copied) : m_doc(doc), m_nModified(doc.IsModified()) {
    m_doc.GetFiles(m_files);
    const AttachmentWatch watch(doc);
    std::vector<CMailDoc::FileInfo> files = m_files;
    for (CMailDoc::FileInfo& file : files) {
        if (copied == Copied::All || IsUnsized(platform::ToNativePath(file.Path))) file.Path = CopyOf(file.Path);
    }
    watch.Check();
    m_doc.SetFiles(files);
}

AttachmentCopies::~AttachmentCopies() {
    m_doc.SetFiles(m_files);
    m_doc.SetModifiedFlag(m_nModified);
}

// The copy has the file's name, which the message shows.
CString AttachmentCopies::CopyOf(const CString& path) {
    const WorkFolder& folder = m_folders.emplace_back();
    CString copy = folder.LibraryPath() + "\\" + CFileUtility::GetFileNameFromPath(path);
    Copy(platform::ToNativePath(path), platform::ToNativePath(copy));
    return copy;
}

}  // namespace hostkit
