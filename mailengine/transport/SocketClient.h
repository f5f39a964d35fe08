// CSocketClient: a blocking stream connection that has, after any failure, a ready-made text for the user. It serves
// one connection, of one session, and one thread; handlers that run while it waits must not touch it.
#pragma once

#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/support/platform/text/String.h>

class CSocketClient {
public:
    // Not connected yet; takes no handle of the system.
    CSocketClient() = default;
    CSocketClient(const CSocketClient&) = delete;
    CSocketClient& operator=(const CSocketClient&) = delete;
    // Ends a connection that still stands, without a word to the peer.
    virtual ~CSocketClient();

    // Connects to host, a name or a dotted address, at the low 16 bits of port. 0: no connection stands.
    [[nodiscard]] int Connect(const char* host, int port);
    // Shuts the connection down in both directions and frees it. Non-zero if nothing was open or it was closed; 0: the
    // peer has torn it down already, and the handle goes with this object.
    int Close();
    // Sends length bytes. The result is length, 0 for no data (which is no failure), -1 on failure. With moreFollows
    // the bytes may wait a moment for the next ones, so that packets are full.
    [[nodiscard]] int Send(const void* data, int length, int moreFollows = 0);
    // Waits for bytes and takes at most size of them. The result is their number, 0 for no buffer or a connection that
    // the peer closed (neither is a failure), -1 on failure. With dontWait it is a failure if nothing has come yet.
    [[nodiscard]] int Receive(void* buffer, int size, int dontWait = 0);
    // The text of the last operation's failure, code page 932; empty behind one that did not fail.
    CString GetError() { return m_strError; }
    // Its number: an errno, or the resolver's own, below 0. Means nothing behind an operation that did not fail.
    int GetErrorNumber() const { return m_nError; }

    // What may end a wait, lent: see CAsyncSocket. Without, waits last for ever.
    void SetWait(CSocketWait* wait) { m_socket.SetWait(wait); }

private:
    void SetError(const char* action);

    CSocket m_socket;
    int m_bConnected = 0;  // from a successful Connect to a successful Close
    CString m_strError;
    int m_nError = 0;
};
