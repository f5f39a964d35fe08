#include "TemporaryFile.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include "Failure.h"

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
constexpr mode_t kPermissionBits = 0777;
constexpr int kNameTries = 100;

// The path that a signal removes, null if there is none. Changed only while the signals wait.
const char* g_path = nullptr;
std::array<struct sigaction, kSignals.size()> g_oldActions;

// Removes the file and lets the signal end the program as it would have.
void RemoveAndEnd(int number) {
    if (g_path != nullptr) unlink(g_path);
    signal(number, SIG_DFL);
    raise(number);
}

// Holds the signals back while the file and what the handler knows of it differ.
class CSignalPause {
public:
    CSignalPause() {
        sigset_t set;
        sigemptyset(&set);
        for (const int number : kSignals)
            sigaddset(&set, number);
        sigprocmask(SIG_BLOCK, &set, &m_old);
    }
    CSignalPause(const CSignalPause&) = delete;
    CSignalPause& operator=(const CSignalPause&) = delete;
    ~CSignalPause() { sigprocmask(SIG_SETMASK, &m_old, nullptr); }

private:
    sigset_t m_old;
};

void Watch(const char* path) {
    g_path = path;
    struct sigaction action = {};
    action.sa_handler = RemoveAndEnd;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], nullptr, &g_oldActions[i]);
        // One that is ignored (nohup) stays so.
        if (g_oldActions[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
}

void Unwatch() {
    g_path = nullptr;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        sigaction(kSignals[i], &g_oldActions[i], nullptr);
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string NewName() {
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) number = static_cast<std::uint64_t>(getpid());
    return ".mailengine-" + std::to_string(number) + ".tmp";
}

}  // namespace

CTemporaryFile::CTemporaryFile(const std::string& target, const struct stat* old) : m_strTarget(target) {
    const CSignalPause pause;
    MakeFile(old == nullptr ? 0666 : 0600);
    Watch(m_strPath.c_str());
    if (old == nullptr) return;
    // Only root can give a file away; for others the new file is their own, as any file that they write.
    if (fchown(m_nDescriptor, old->st_uid, old->st_gid) != 0) errno = 0;
    fchmod(m_nDescriptor, old->st_mode & kPermissionBits);
}

CTemporaryFile::~CTemporaryFile() {
    const CSignalPause pause;
    if (m_nDescriptor >= 0) close(m_nDescriptor);
    if (m_strPath.empty()) return;
    unlink(m_strPath.c_str());
    Unwatch();
}

void CTemporaryFile::MakeFile(mode_t mode) {
    for (int i = 0; i < kNameTries; ++i) {
        m_strPath = FolderOf(m_strTarget) + NewName();
        m_nDescriptor = open(m_strPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        if (m_nDescriptor >= 0) return;
        if (errno != EEXIST) break;
    }
    const int error = errno;
    throw CFailure(m_strTarget + ": cannot make a file in its folder: " + std::strerror(error) +
                   "; name a folder that you can write to");
}

void CTemporaryFile::Replace() {
    const bool synced = fsync(m_nDescriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    const bool closed = close(m_nDescriptor) == 0;
    m_nDescriptor = -1;
    const CSignalPause pause;
    if (!synced || !closed || rename(m_strPath.c_str(), m_strTarget.c_str()) != 0) {
        const int error = errno;
        throw CFailure(m_strTarget + ": cannot be written: " + std::strerror(error) + "; it is as it was before");
    }
    Unwatch();
    m_strPath.clear();
}
