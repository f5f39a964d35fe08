#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <hostkit/files/PendingFile.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace hostkit {

// Entries are used again and never freed, so that a handler can walk them at any moment.
struct PendingFile::Entry {
    std::atomic<bool> isUsed{true};
    std::atomic<const char*> path{nullptr};  // null: nothing to remove
    std::atomic<bool> isFolder{false};
    Entry* next = nullptr;
};

namespace {

std::atomic<PendingFile::Entry*> g_first{nullptr};
static_assert(std::atomic<PendingFile::Entry*>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

PendingFile::Entry* TakeEntry() {
    for (PendingFile::Entry* entry = g_first; entry != nullptr; entry = entry->next) {
        bool isUsed = false;
        if (entry->isUsed.compare_exchange_strong(isUsed, true)) return entry;
    }
    auto* const entry = new PendingFile::Entry;
    entry->next = g_first;
    while (!g_first.compare_exchange_weak(entry->next, entry)) {
    }
    return entry;
}

// One pass over the folder's files, which a removal may make incomplete. Whether it removed any.
// What the kernel writes for getdents64; libc's readdir takes memory, which a handler may not.
bool RemoveFilesIn(int folder) noexcept {
    alignas(dirent64) char entries[32 * 1024];
    bool anyRemoved = false;
    lseek(folder, 0, SEEK_SET);
    for (;;) {
        const long bytes = syscall(SYS_getdents64, folder, entries, sizeof entries);
        if (bytes <= 0) return anyRemoved;
        for (long at = 0; at < bytes;) {
            const auto* const entry = reinterpret_cast<const dirent64*>(entries + at);
            anyRemoved |= unlinkat(folder, entry->d_name, 0) == 0;
            at += entry->d_reclen;
        }
    }
}

void RemoveFolder(const char* path) noexcept {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) return;
    while (RemoveFilesIn(folder)) {
    }
    close(folder);
    rmdir(path);
}

void Remove(const PendingFile::Entry& entry) noexcept {
    const char* const path = entry.path;
    if (path == nullptr) return;
    if (entry.isFolder)
        RemoveFolder(path);
    else
        unlink(path);
}

}  // namespace

PendingFile::PendingFile(Kind kind, std::string path) : m_strPath(std::move(path)), m_pEntry(TakeEntry()) {
    m_pEntry->isFolder = kind == Kind::Folder;
    m_pEntry->path = m_strPath.c_str();
}

PendingFile::~PendingFile() {
    Remove(*m_pEntry);
    Release();
    m_pEntry->isUsed = false;
}

void PendingFile::Release() {
    m_pEntry->path = nullptr;
}

void RemovePendingFiles() noexcept {
    const int error = errno;
    for (const PendingFile::Entry* entry = g_first; entry != nullptr; entry = entry->next)
        Remove(*entry);
    errno = error;
}

int MoveWithoutReplacing(const std::string& from, const std::string& to) noexcept {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return -1;
    // A file system without that has hard links.
    if (link(from.c_str(), to.c_str()) != 0) return -1;
    unlink(from.c_str());
    return 0;
}

std::string NewFileName() {
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) number = static_cast<std::uint64_t>(getpid());
    return ".mailengine-" + std::to_string(number) + ".tmp";
}

}  // namespace hostkit
