// CAsyncSocket and CSocket: one stream connection of a client, over IPv4 or IPv6. Its operations block as seen by the
// caller; underneath the descriptor does not, and while one waits, the installed window system's messages go on being
// dispatched on the calling thread, so handlers of the host run inside these calls and must leave the socket alone.
// For that wait, and for nothing else, this folder uses windows/.
// One thread at a time. A failed operation leaves its number for platform::GetLastError, and SIGPIPE never comes.
#pragma once

#include <chrono>

#include <mailengine/support/platform/base/CmdTarget.h>
#include <mailengine/support/platform/base/Export.h>

using SOCKET = int;
inline constexpr SOCKET INVALID_SOCKET = -1;

// CSocketWait: what may end the wait of a socket before its event comes. Asked on the waiting thread.
class MAILENGINE_API CSocketWait {
public:
    virtual ~CSocketWait();
    // Milliseconds that the wait which begins now may last; below 0: for ever. A wait for room to send begins anew with
    // each byte that goes out, and one for a connection with each address that is tried.
    virtual int TimeLimit() = 0;
    // Asked every kAskMilliseconds of a wait, and not more often. 0 ends the wait.
    virtual int GoOn() = 0;

    // Twice this is the longest time from a press of a button to its effect: one turn delivers it, the next sees it.
    static constexpr int kAskMilliseconds = 50;
};

class MAILENGINE_API CAsyncSocket : public CObject {
public:
    CAsyncSocket() = default;
    CAsyncSocket(const CAsyncSocket&) = delete;
    CAsyncSocket& operator=(const CAsyncSocket&) = delete;
    // Frees the handle.
    ~CAsyncSocket() override;

    // Makes a socket, in place of one that was there. Only what a client needs is to be had: local port 0, type 1 (a
    // stream) and no local address; the event mask is not used. 0: the system gave none, or something else was asked.
    int Create(unsigned int port = 0, int type = 1, long events = 0x3F, const char* address = nullptr);
    // Connects to host, a dotted address or a name, trying each of its addresses in the resolver's order until one
    // answers; the time limit holds for each. Each attempt may take a new handle. The name look-up itself cannot be
    // interrupted. 0: no connection stands; the number is that of the last attempt, or, if host has no address, the
    // resolver's own (EAI_NONAME and the like, negative on this system). An empty host has none.
    int Connect(const char* host, unsigned short port);

    // Lends what may end the waits from now on; null, the state at construction, lets them last for ever. Once a wait
    // was ended, the connection is of no more use: each later wait fails at once with the same number, ETIMEDOUT
    // behind a time limit and ECANCELED behind a GoOn of 0.
    void SetWait(CSocketWait* wait) { m_pWait = wait; }

    SOCKET m_hSocket = INVALID_SOCKET;

protected:
    // Behind a call that failed: waits until it can be made again. 0: its failure is final, or the wait was ended.
    int MayGoOn(int writing);
    void CloseHandle();

private:
    int Wait(int writing);
    int OpenHandle(int family);
    int ConnectHandle(const void* address, unsigned int size);
    int MayWaitOn();
    int EndWait(int number);

    CSocketWait* m_pWait = nullptr;
    int m_nEnded = 0;  // the number under which a wait was ended, else 0
    std::chrono::steady_clock::time_point m_asked;
};

class MAILENGINE_API CSocket : public CAsyncSocket {
public:
    // Flag of Send: more data follow soon, so the system may hold these back for a moment and fill its packets. The
    // next Send without it pushes everything.
    static constexpr int kMoreFollows = 0x8000;
    // Flag of Receive: takes what has come, and fails rather than wait.
    static constexpr int kDontWait = 0x40;

    // Frees the handle, which ends the connection as Close does.
    ~CSocket() override;

    // Sends all length bytes of data, which may not be negative. The result is length, or -1 on failure: then nobody
    // knows how much went out.
    int Send(const void* data, int length, int flags = 0);
    // Waits until bytes arrive and takes at most size of them, at least 1. 0: the peer closed. -1: failure. What came
    // before a connection broke off can be received still.
    int Receive(void* buffer, int size, int flags = 0);
    // Frees the handle. The connection ends in both directions.
    void Close() { CloseHandle(); }
};

namespace platform {

// Ends a connection: how is 0 for receiving, 1 for sending, 2 for both. -1 on failure, 0 else.
MAILENGINE_API int shutdown(SOCKET handle, int how);

}  // namespace platform
