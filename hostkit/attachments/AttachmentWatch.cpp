#include <algorithm>
#include <cerrno>
#include <cstring>
#include <hostkit/attachments/AttachmentWatch.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>

namespace hostkit {

namespace {

constexpr std::uint64_t kLookBytes = 64 * 1024;

bool IsSame(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
           one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

}  // namespace

void RefuseChanged(const std::string& path) {
    throw Failure(FailureKind::Input, {Field::Attachment, path},
                  Words("was changed while it was read; attach it when it is done"));
}

AttachmentWatch::AttachmentWatch(const std::vector<File>& files) {
    for (const File& file : files) {
        Watched watched{file, {}};
        if (stat(file.path.c_str(), &watched.status) != 0)
            throw Failure(FailureKind::Input, {Field::Attachment, file.shown}, SystemWords(errno));
        m_files.push_back(std::move(watched));
    }
}

// An attached mail goes out as it is, and the Base64 of other files is larger.
std::uint64_t AttachmentWatch::ContentBytes() const {
    std::uint64_t bytes = 0;
    for (const Watched& file : m_files)
        bytes += static_cast<std::uint64_t>(file.status.st_size) * (file.file.path.ends_with(".eml") ? 3 : 4) / 3;
    return bytes;
}

const AttachmentWatch::Watched* AttachmentWatch::FirstChanged() const {
    const auto changed = std::find_if(m_files.begin(), m_files.end(), [](const Watched& file) {
        struct stat now;
        return stat(file.file.path.c_str(), &now) != 0 || !IsSame(now, file.status);
    });
    return changed == m_files.end() ? nullptr : &*changed;
}

bool AttachmentWatch::HasChanged() const {
    return FirstChanged() != nullptr;
}

void AttachmentWatch::Check() const {
    if (const Watched* const changed = FirstChanged(); changed != nullptr) RefuseChanged(changed->file.shown);
}

int WatchedStream::WriteString(const char* text) {
    m_nBytes += text != nullptr ? std::strlen(text) : 0;
    if (m_nBytes > m_nNextLook) {
        if (m_watch.HasChanged()) return 0;
        m_nNextLook = m_nBytes + kLookBytes;
    }
    return m_target.WriteString(text);
}

}  // namespace hostkit
