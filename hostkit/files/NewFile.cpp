#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/NewFile.h>
#include <hostkit/files/WorkFolder.h>
#include <map>
#include <sys/xattr.h>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr mode_t kModeBits = 07777;
constexpr int kNameTries = 100;
constexpr char kAccessList[] = "system.posix_acl_access";
constexpr const char* kUnchanged = Marked("cannot be written: {1}; it is as it was before");
constexpr const char* kHalf = Marked("cannot be written: {1}; the message there is not whole");

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string PathOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// Calls make with new names in the folder until it succeeds. Null, with errno: it failed for another reason than a name
// that is taken.
template <class Make>
std::unique_ptr<PendingFile> MakePending(const std::string& folder, Make make) {
    for (int i = 0; i < kNameTries; ++i) {
        auto pending = std::make_unique<PendingFile>(PendingFile::Kind::File, folder + NewFileName());
        if (make(pending->Path())) return pending;
        const int error = errno;
        pending->Release();
        errno = error;
        if (error != EEXIST) return nullptr;
    }
    return nullptr;
}

// The access list of the file at path, as the system stores it; empty if there is none.
std::string AccessListOf(const std::string& path) {
    std::string list(64 * 1024, '\0');  // the most that the system gives
    const ssize_t size = getxattr(path.c_str(), kAccessList, list.data(), list.size());
    list.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return list;
}

// What its user noted at the file at path, by name.
std::map<std::string, std::string> AttributesOf(const std::string& path) {
    std::string names(64 * 1024, '\0');  // the most that the system gives, as below
    const ssize_t size = listxattr(path.c_str(), names.data(), names.size());
    names.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    std::map<std::string, std::string> attributes;
    for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
        const std::string name = names.c_str() + at;
        if (!name.starts_with("user.")) continue;
        std::string value(64 * 1024, '\0');
        const ssize_t bytes = getxattr(path.c_str(), name.c_str(), value.data(), value.size());
        attributes[name] = value.substr(0, static_cast<std::size_t>(std::max<ssize_t>(bytes, 0)));
    }
    return attributes;
}

// A file system that knows no such step is no reason to stop.
bool IsDone(int result) {
    return result == 0 || errno == EINVAL || errno == ENOTSUP;
}

// Copies file from its first byte on. 0, or the number (errno) of the failure.
int CopyAll(int file, int target) {
    std::array<char, 64 * 1024> piece;
    if (lseek(file, 0, SEEK_SET) != 0) return errno;
    for (;;) {
        const ssize_t count = ReadSome(file, piece.data(), piece.size());
        if (count <= 0) return count == 0 ? 0 : errno;
        const int error = WriteAll(target, {piece.data(), static_cast<std::size_t>(count)});
        if (error != 0) return error;
    }
}

}  // namespace

NewFile::NewFile(const std::string& target, const std::string& name, const struct stat* old, Unkept unkept)
    : m_strTarget(target), m_strName(name), m_bReplaces(old != nullptr) {
    m_bMayWriteInPlace = old != nullptr && unkept == Unkept::WriteInPlace;
    const bool isMade = Make(FolderOf(target), old == nullptr ? 0666 : 0600);
    if (!isMade && old != nullptr && !m_bMayWriteInPlace) {
        throw Failure(FailureKind::Unkept, {Field::None, name},
                      Words("a new file cannot be made beside it: {1}", SystemWords(errno)));
    }
    if (!isMade && !m_bMayWriteInPlace)
        Fail(errno, Marked("cannot be written: {1}; name a file in a folder that you can write to"));
    if (isMade && (old == nullptr || KeepsAllOf(*old))) return;
    if (!m_bMayWriteInPlace) {
        throw Failure(
            FailureKind::Unkept, {Field::None, name},
            Words("a new file in its place cannot have its owner, group, permissions, access list and attributes"));
    }
    m_bInPlace = true;
    if (!Make(TemporaryFolder().native() + "/", 0600)) Fail(errno, kUnchanged);
}

// False, with errno: no file can be made in the folder.
bool NewFile::Make(const std::string& folder, mode_t mode) {
    m_pNamed.reset();
    m_file = hostkit::Descriptor(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    // Without its name in /proc an unnamed file could never get another.
    if (m_file && access(PathOf(m_file.Number()).c_str(), F_OK) == 0) return true;
    m_pNamed = MakePending(folder, [&](const std::string& path) {
        m_file = hostkit::Descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
        return static_cast<bool>(m_file);
    });
    return m_pNamed != nullptr;
}

// Gives the file what old has, the file at the target. Who may not give a file away may still give it to a group of
// theirs. The permissions come last, since the others change them. False: the system did not let it have all of that.
bool NewFile::KeepsAllOf(const struct stat& old) const {
    const int file = m_file.Number();
    if (fchown(file, old.st_uid, old.st_gid) != 0) (void)!fchown(file, static_cast<uid_t>(-1), old.st_gid);
    const std::string list = AccessListOf(m_strTarget);
    if (list.empty())
        (void)fremovexattr(file, kAccessList);  // one that it has from its folder
    else
        (void)fsetxattr(file, kAccessList, list.data(), list.size(), 0);
    const std::map<std::string, std::string> attributes = AttributesOf(m_strTarget);
    for (const auto& [attribute, value] : attributes)
        (void)fsetxattr(file, attribute.c_str(), value.data(), value.size(), 0);
    (void)fchmod(file, old.st_mode & kModeBits);
    struct stat now;
    return fstat(file, &now) == 0 && now.st_uid == old.st_uid && now.st_gid == old.st_gid &&
           ((now.st_mode ^ old.st_mode) & kModeBits) == 0 && AccessListOf(PathOf(file)) == list &&
           AttributesOf(PathOf(file)) == attributes;
}

void NewFile::TakePlace() {
    if (m_bInPlace) return CopyIntoTarget();
    if (!IsDone(fsync(m_file.Number()))) Fail(errno, kUnchanged);
    if (m_pNamed ? MoveToTarget() : LinkToTarget()) return;
    const int error = errno;
    if (error == EBUSY && m_bMayWriteInPlace) return CopyIntoTarget();
    if (error == EBUSY && m_bReplaces) {
        throw Failure(FailureKind::Unkept, {Field::None, m_strName},
                      Words("a new file cannot take its place, since something is mounted there"));
    }
    Fail(error, kUnchanged);
}

// A link replaces nothing: a file that stands at the target is replaced by a second name of the new one.
bool NewFile::LinkToTarget() {
    const std::string file = PathOf(m_file.Number());
    const auto link = [&](const std::string& path) {
        return linkat(AT_FDCWD, file.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (!m_bReplaces) return link(m_strTarget);
    m_pNamed = MakePending(FolderOf(m_strTarget), link);
    return m_pNamed && MoveToTarget();
}

bool NewFile::MoveToTarget() {
    const int moved = m_bReplaces ? rename(m_pNamed->Path().c_str(), m_strTarget.c_str())
                                  : MoveWithoutReplacing(m_pNamed->Path(), m_strTarget);
    if (moved == 0) m_pNamed->Release();
    return moved == 0;
}

// The room is asked for first, so that a full disk changes nothing. The path has no links left in it: one that stands
// there now is another's, and is not followed.
void NewFile::CopyIntoTarget() {
    const hostkit::Descriptor target(open(m_strTarget.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW));
    struct stat status;
    if (!target || fstat(m_file.Number(), &status) != 0) Fail(errno, kUnchanged);
    if (!IsDone(fallocate(target.Number(), FALLOC_FL_KEEP_SIZE, 0, std::max<off_t>(status.st_size, 1))))
        Fail(errno, kUnchanged);
    const int error = CopyAll(m_file.Number(), target.Number());
    if (error != 0) Fail(error, kHalf);
    if (ftruncate(target.Number(), status.st_size) != 0 || !IsDone(fsync(target.Number()))) Fail(errno, kHalf);
}

void NewFile::Fail(int error, const char* sentence) const {
    throw Failure(FailureKind::Output, {Field::None, m_strName}, Words(sentence, SystemWords(error)));
}

}  // namespace hostkit
