#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/files/NewFile.h>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr mode_t kPermissionBits = 0777;
constexpr int kNameTries = 100;

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

NewFile::NewFile(const std::string& target, const struct stat* old) : m_strTarget(target) {
    MakeFile(old == nullptr ? 0666 : 0600);
    if (old == nullptr) return;
    // Only root can give a file away; for others the new file is their own, as any file that they write.
    if (fchown(m_nDescriptor, old->st_uid, old->st_gid) != 0) errno = 0;
    fchmod(m_nDescriptor, old->st_mode & kPermissionBits);
}

NewFile::~NewFile() {
    if (m_nDescriptor >= 0) close(m_nDescriptor);
}

void NewFile::MakeFile(mode_t mode) {
    for (int i = 0; i < kNameTries; ++i) {
        m_pFile = std::make_unique<PendingFile>(PendingFile::Kind::File, FolderOf(m_strTarget) + NewFileName());
        m_nDescriptor = open(m_pFile->Path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        if (m_nDescriptor >= 0) return;
        m_pFile->Release();
        if (errno != EEXIST) break;
    }
    throw Failure(FailureKind::Target, {Field::None, m_strTarget},
                  std::string("cannot make a file in its folder: ") + std::strerror(errno) +
                      "; name a folder that you can write to");
}

void NewFile::Replace() {
    const bool synced = fsync(m_nDescriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    const bool closed = close(m_nDescriptor) == 0;
    m_nDescriptor = -1;
    if (!synced || !closed || rename(m_pFile->Path().c_str(), m_strTarget.c_str()) != 0) {
        throw Failure(FailureKind::Output, {Field::None, m_strTarget},
                      std::string("cannot be written: ") + std::strerror(errno) + "; it is as it was before");
    }
    m_pFile->Release();
}

}  // namespace hostkit
