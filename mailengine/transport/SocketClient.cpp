#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/transport/SocketClient.h>

CSocketClient::~CSocketClient() {
    (void)Close();  // nobody is left to be told
}

int CSocketClient::Connect(const char* host, int port) {
    m_strError.Empty();
    if (m_socket.Create() && m_socket.Connect(host, static_cast<unsigned short>(port & 0xFFFF))) {
        m_bConnected = 1;
        return 1;
    }
    SetError("Connect");
    return 0;
}

int CSocketClient::Close() {
    m_strError.Empty();
    if (!m_bConnected) return 1;
    if (platform::shutdown(m_socket.m_hSocket, 2) == -1) {
        SetError("Close");
        return 0;
    }
    m_socket.Close();
    m_bConnected = 0;
    return 1;
}

int CSocketClient::Send(const void* data, int length, int moreFollows) {
    m_strError.Empty();
    if (data == nullptr || length == 0) return 0;
    const int sent = m_socket.Send(data, length, moreFollows ? CSocket::kMoreFollows : 0);
    if (sent == -1) SetError("Send");
    return sent;
}

int CSocketClient::Receive(void* buffer, int size, int dontWait) {
    m_strError.Empty();
    if (buffer == nullptr || size == 0) return 0;
    const int received = m_socket.Receive(buffer, size, dontWait ? CSocket::kDontWait : 0);
    if (received == -1) SetError("Recv");
    return received;
}

void CSocketClient::SetError(const char* action) {
    m_nError = static_cast<int>(platform::GetLastError());
    m_strError.Format(texts::kSocketError, action, m_nError);
}
