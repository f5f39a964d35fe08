#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <hostkit/files/Descriptors.h>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr int kMaxLinks = 40;  // what the system follows too

// Whether the folder holds a process's descriptors: /proc/1/fd, /proc/1/task/1/fd.
bool HoldsDescriptors(const std::string& folder) {
    return folder.starts_with("/proc/") && folder.ends_with("/fd");
}

bool IsOwn(const std::string& folder) {
    std::error_code none;
    const std::string self = std::filesystem::canonical("/proc/self", none).native();
    return !none && (folder == self + "/fd" || folder.starts_with(self + "/task/"));
}

std::optional<int> NumberIn(const std::string& folder, const std::string& name) {
    int number = 0;
    const auto read = std::from_chars(name.data(), name.data() + name.size(), number);
    if (read.ec != std::errc() || read.ptr != name.data() + name.size()) return std::nullopt;
    return IsOwn(folder) ? number : -1;
}

bool WaitFor(int descriptor, short events) {
    pollfd wait{descriptor, events, 0};
    return poll(&wait, 1, -1) >= 0 || errno == EINTR;
}

bool IsToComeAgain(int descriptor, short events) {
    if (errno == EINTR) return true;
    return (errno == EAGAIN || errno == EWOULDBLOCK) && WaitFor(descriptor, events);
}

}  // namespace

int Descriptor::Close() {
    const int number = std::exchange(m_nNumber, -1);
    return number >= 0 && close(number) != 0 && errno != EINTR ? errno : 0;
}

std::optional<int> DescriptorNamedBy(const std::filesystem::path& path) {
    std::error_code none;
    std::filesystem::path at = std::filesystem::absolute(path, none);
    for (int links = 0; !none && links < kMaxLinks; ++links) {
        const std::filesystem::path folder = std::filesystem::canonical(at.parent_path(), none);
        if (none) break;
        if (HoldsDescriptors(folder.native())) return NumberIn(folder.native(), at.filename().native());
        const std::filesystem::path link = std::filesystem::read_symlink(folder / at.filename(), none);
        at = folder / link;  // an absolute link replaces the folder
    }
    return std::nullopt;
}

Descriptor SecondFor(int number) {
    return Descriptor(fcntl(number, F_DUPFD_CLOEXEC, 0));
}

Descriptor OpenToRead(const std::filesystem::path& path) {
    const std::optional<int> named = DescriptorNamedBy(path);
    return named && *named >= 0 ? SecondFor(*named) : Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
}

ssize_t ReadSome(int descriptor, char* piece, std::size_t size) {
    for (;;) {
        const ssize_t count = read(descriptor, piece, size);
        if (count >= 0 || !IsToComeAgain(descriptor, POLLIN)) return count;
    }
}

int WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (!IsToComeAgain(descriptor, POLLOUT))
            return errno;
    }
    return 0;
}

}  // namespace hostkit
