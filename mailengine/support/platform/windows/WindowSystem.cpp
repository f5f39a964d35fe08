#include <algorithm>
#include <cerrno>
#include <chrono>
#include <poll.h>

#include <mailengine/support/platform/windows/WindowSystem.h>

namespace {

using Clock = std::chrono::steady_clock;

// The end of a wait, told in the milliseconds that are left.
class Deadline {
public:
    explicit Deadline(int timeout) : m_endless(timeout < 0), m_end(Clock::now() + std::chrono::milliseconds(timeout)) {}

    // Rounded up, so that a wait never ends early; -1 for one without an end.
    int Left() const {
        if (m_endless) return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_end - Clock::now()).count();
        return static_cast<int>(std::max<decltype(left)>(left, 0));
    }

private:
    bool m_endless;
    Clock::time_point m_end;
};

// The events that are ready in what poll reported.
int ReadyEvents(short reported, int asked) {
    if ((reported & (POLLERR | POLLHUP)) != 0) return asked;
    int ready = 0;
    if ((reported & POLLIN) != 0) ready |= CWindowSystem::kReadable;
    if ((reported & POLLOUT) != 0) ready |= CWindowSystem::kWritable;
    return ready;
}

int FailWith(int error) {
    errno = error;
    return -1;
}

class CBuiltInWindowSystem : public CWindowSystem {
public:
    HWND MakeDialog(const platform::DialogTemplate&, HWND) override {
        return reinterpret_cast<HWND>(m_lastHandle += 2);
    }
    HWND GetControl(HWND, int) override { return nullptr; }
    void DestroyWindow(HWND) override {}
    void ShowWindow(HWND, int) override {}
    void EnableWindow(HWND, int) override {}
    void SetWindowText(HWND, const CString&) override {}
    void SetProgressRange(HWND, int, int) override {}
    void SetProgressPosition(HWND, int) override {}
    int MessageWaits() override { return 0; }
    int PumpMessage() override { return 1; }
    int OnIdle(int) override { return 0; }
    int MessageBox(HWND, const CString&, const CString&, unsigned int) override { return IDOK; }
    int RunFileDialog(HWND, const FileDialogRequest&, CString&) override { return IDCANCEL; }
    int WaitForSocket(int descriptor, int events, int timeout) override {
        return PollSocket(descriptor, events, timeout);
    }

private:
    std::uintptr_t m_lastHandle = 1;  // always odd: never the address of a host's window
};

CBuiltInWindowSystem g_builtIn;
CWindowSystem* g_installed = nullptr;

}  // namespace

int CWindowSystem::PollSocket(int descriptor, int events, int timeout) {
    // poll would pass over a negative descriptor, and wait for it without an end.
    if (descriptor < 0) return FailWith(EBADF);
    pollfd watched{descriptor, 0, 0};
    if ((events & kReadable) != 0) watched.events |= POLLIN;
    if ((events & kWritable) != 0) watched.events |= POLLOUT;
    const Deadline deadline(timeout);
    int count = 0;
    do {
        count = poll(&watched, 1, deadline.Left());
    } while (count < 0 && errno == EINTR);
    if (count > 0 && (watched.revents & POLLNVAL) != 0) return FailWith(EBADF);
    return count > 0 ? ReadyEvents(watched.revents, events) : count;
}

int CWindowSystem::WaitForSocket(int descriptor, int events, int timeout) {
    const Deadline deadline(timeout);
    int step = 0;
    for (;;) {
        if (const int ready = PollSocket(descriptor, events, step); ready != 0) return ready;
        const int left = deadline.Left();
        if (left == 0) return 0;
        step = left < 0 ? kMessageStep : std::min(left, kMessageStep);
        if (MessageWaits() == 0) continue;
        (void)PumpMessage();  // the host's own loop is told of the program's end again
        step = 0;
    }
}

CWindowSystem& CWindowSystem::Get() {
    return g_installed != nullptr ? *g_installed : g_builtIn;
}

CWindowSystem* CWindowSystem::Install(CWindowSystem* system) {
    CWindowSystem* const before = g_installed;
    g_installed = system;
    return before;
}
