#include <algorithm>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/support/platform/windows/WindowSystem.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

static_assert(CSocket::kMoreFollows == MSG_MORE && CSocket::kDontWait == MSG_DONTWAIT);

struct FreeAddresses {
    void operator()(addrinfo* list) const {
        const int number = errno;
        freeaddrinfo(list);
        errno = number;
    }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

// The addresses of host; empty if it has none, with the resolver's number in errno.
Addresses LookUp(const char* host) {
    const bool named = host != nullptr && *host != '\0';  // to the resolver no name is this machine
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    const int number = named ? getaddrinfo(host, nullptr, &hints, &list) : EAI_NONAME;
    if (number != 0 && number != EAI_SYSTEM) errno = number;
    return Addresses(number == 0 ? list : nullptr);
}

void SetPort(sockaddr* address, unsigned short port) {
    if (address->sa_family == AF_INET6)
        reinterpret_cast<sockaddr_in6*>(address)->sin6_port = htons(port);
    else
        reinterpret_cast<sockaddr_in*>(address)->sin_port = htons(port);
}

// How many milliseconds to wait before the next look at the limit; 0: it is over.
int Turn(int limit, steady_clock::time_point begun) {
    if (limit < 0) return CSocketWait::kAskMilliseconds;
    const auto left = limit - std::chrono::duration_cast<milliseconds>(steady_clock::now() - begun).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, CSocketWait::kAskMilliseconds));
}

}  // namespace

CSocketWait::~CSocketWait() = default;
CSocket::~CSocket() = default;

CAsyncSocket::~CAsyncSocket() {
    CloseHandle();
}

int CAsyncSocket::Create(unsigned int port, int type, long events, const char* address) {
    (void)events;
    if (port != 0 || type != SOCK_STREAM || address != nullptr) {
        errno = EINVAL;
        return 0;
    }
    return OpenHandle(AF_INET) || (errno == EAFNOSUPPORT && OpenHandle(AF_INET6));
}

int CAsyncSocket::OpenHandle(int family) {
    CloseHandle();
    m_nEnded = 0;
    m_hSocket = socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (m_hSocket == INVALID_SOCKET) return 0;
    // A command must not wait for the peer's delayed acknowledgement of the one before; kMoreFollows fills the packets.
    const int on = 1;
    (void)setsockopt(m_hSocket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);  // it would only be slower without
    return 1;
}

void CAsyncSocket::CloseHandle() {
    const int number = errno;
    if (m_hSocket != INVALID_SOCKET) (void)close(m_hSocket);  // the handle is free whatever close says
    m_hSocket = INVALID_SOCKET;
    errno = number;
}

int CAsyncSocket::Connect(const char* host, unsigned short port) {
    const Addresses list = LookUp(host);
    for (addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
        if (entry->ai_family != AF_INET && entry->ai_family != AF_INET6) continue;
        SetPort(entry->ai_addr, port);
        // The family is known only now, and a socket whose attempt failed cannot be used for another.
        if (OpenHandle(entry->ai_family) && ConnectHandle(entry->ai_addr, entry->ai_addrlen)) return 1;
        if (m_nEnded == ECANCELED) break;
    }
    return 0;
}

int CAsyncSocket::ConnectHandle(const void* address, unsigned int size) {
    if (connect(m_hSocket, static_cast<const sockaddr*>(address), size) == 0) return 1;
    // An interrupted attempt goes on in the background like one that could not be made at once.
    if (errno != EINPROGRESS && errno != EINTR) return 0;
    if (!Wait(1)) return 0;
    int number = 0;
    socklen_t bytes = sizeof number;
    if (getsockopt(m_hSocket, SOL_SOCKET, SO_ERROR, &number, &bytes) != 0) return 0;
    errno = number;
    return number == 0;
}

int CAsyncSocket::EndWait(int number) {
    m_nEnded = number;
    errno = number;
    return 0;
}

int CAsyncSocket::Wait(int writing) {
    if (m_nEnded != 0) return EndWait(m_nEnded);
    const int event = writing ? CWindowSystem::kWritable : CWindowSystem::kReadable;
    if (m_pWait == nullptr) return CWindowSystem::Get().WaitForSocket(m_hSocket, event, -1) > 0;
    const int limit = m_pWait->TimeLimit();
    const steady_clock::time_point begun = steady_clock::now();
    for (;;) {
        if (!MayWaitOn()) return EndWait(ECANCELED);
        const int turn = Turn(limit, begun);
        const int ready = CWindowSystem::Get().WaitForSocket(m_hSocket, event, turn);
        if (ready != 0) return ready > 0;
        if (turn == 0) return EndWait(ETIMEDOUT);
    }
}

// Asks the wait by the clock: data may flow with many a short wait, or with none for long.
int CAsyncSocket::MayWaitOn() {
    const steady_clock::time_point now = steady_clock::now();
    if (now - m_asked < milliseconds(CSocketWait::kAskMilliseconds)) return 1;
    m_asked = now;
    return m_pWait->GoOn();
}

int CAsyncSocket::MayGoOn(int writing) {
    return errno == EINTR || (errno == EAGAIN && Wait(writing));
}

int CSocket::Send(const void* data, int length, int flags) {
    const char* const bytes = static_cast<const char*>(data);
    for (int sent = 0; sent < length;) {
        const ssize_t count =
            send(m_hSocket, bytes + sent, static_cast<std::size_t>(length - sent), flags | MSG_NOSIGNAL);
        if (count >= 0)
            sent += static_cast<int>(count);
        else if (!MayGoOn(1))
            return -1;
    }
    return length;
}

int CSocket::Receive(void* buffer, int size, int flags) {
    for (;;) {
        const ssize_t count = recv(m_hSocket, buffer, static_cast<std::size_t>(size), flags);
        if (count >= 0) return static_cast<int>(count);
        if ((flags & kDontWait) != 0 || !MayGoOn(0)) return -1;
    }
}

int platform::shutdown(SOCKET handle, int how) {
    return ::shutdown(handle, how);
}
