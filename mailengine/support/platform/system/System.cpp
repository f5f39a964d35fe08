#include <cerrno>
#include <cstring>
#include <ctime>
#include <unistd.h>

#include <mailengine/support/platform/system/System.h>

namespace {

CSystem g_builtIn;
CSystem* g_installed = nullptr;

}  // namespace

std::int64_t CSystem::Time() {
    return std::time(nullptr);
}

int CSystem::LocalTime(std::int64_t time, LocalFields& fields) {
    const std::time_t seconds = time;
    std::tm split{};
    tzset();
    if (localtime_r(&seconds, &split) == nullptr) return 0;
    fields = {split.tm_year + 1900, split.tm_mon + 1, split.tm_mday, split.tm_hour,
              split.tm_min,         split.tm_sec,     split.tm_wday, static_cast<std::int32_t>(timezone)};
    return 1;
}

std::uint32_t CSystem::ProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

int CSystem::HostName(char* buffer, int size) {
    if (size < 1 || gethostname(buffer, static_cast<std::size_t>(size)) != 0) return -1;
    // A name cut to the buffer has no NUL (POSIX gethostname).
    return std::memchr(buffer, 0, static_cast<std::size_t>(size)) == nullptr ? -1 : 0;
}

void CSystem::Sleep(unsigned int milliseconds) {
    timespec left{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

CSystem& CSystem::Get() {
    return g_installed != nullptr ? *g_installed : g_builtIn;
}

CSystem* CSystem::Install(CSystem* system) {
    CSystem* const before = g_installed;
    g_installed = system;
    return before;
}

int platform::GetLastError() {
    return errno;
}
