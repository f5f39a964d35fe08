#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>

#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/transport/Command.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/transport/SocketClient.h>

namespace {

constexpr int kHostNameBytes = 256;

// The number at the head of the first three bytes: white space, a sign and digits as far as they go, as the C runtime
// reads one, but in no locale.
unsigned int NumberOf(const char* reply) {
    const char* const end = reply + 3;
    const char* at = std::find_if(reply, end, [](char c) { return c != ' ' && (c < '\t' || c > '\r'); });
    const bool negative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+')) ++at;
    unsigned int number = 0;
    for (; at != end && *at >= '0' && *at <= '9'; ++at)
        number = number * 10 + static_cast<unsigned int>(*at - '0');
    return negative ? 0 - number : number;
}

}  // namespace

CSmtp::CSmtp() : m_pSocket(new CSocketClient) {}

CSmtp::~CSmtp() {
    if (m_bOpen) (void)Close();  // nobody is left to be told
    delete m_pSocket;
}

int CSmtp::Open(const char* server, int port) {
    m_strErrorDetail.Empty();
    if (!m_pSocket->Connect(server, port)) {
        m_strErrorDetail = m_pSocket->GetError();
        return 0;
    }
    char hostName[kHostNameBytes] = {};
    if (CSystem::Get().HostName(hostName, kHostNameBytes) != 0) {
        m_strErrorDetail = texts::kHostNameFailed;
        return 0;
    }
    unsigned int code = 0;
    if (!ReadReply(code)) return 0;
    m_bOpen = WriteFormatString(kHeloCommand, hostName, code);
    return m_bOpen;
}

int CSmtp::Close() {
    if (!m_bOpen) return 1;
    const CString reason = m_strErrorDetail;
    unsigned int code = 0;
    const int answered = WriteString("QUIT\r\n", code);
    m_strErrorDetail = reason;
    m_bOpen = 0;
    return m_pSocket->Close() && answered;
}

int CSmtp::Start(const char* sender, const CStringArray& recipients) {
    m_strErrorDetail.Empty();
    if (recipients.GetSize() > kMaxRecipients || !m_bOpen || !CheckEnvelope(sender, recipients)) return 0;
    unsigned int code = 0;
    if (!WriteFormatString(kMailCommand, CString(sender), code)) return 0;
    for (int i = 0; i < recipients.GetSize(); ++i)
        if (!WriteFormatString(kRcptCommand, recipients.GetAt(i), code)) return 0;
    return WriteString("DATA\r\n", code);
}

int CSmtp::CheckEnvelope(const char* sender, const CStringArray& recipients) {
    const char* const problem = EnvelopeProblem(CString(sender).View(), recipients);
    if (problem != nullptr) m_strErrorDetail = problem;
    return problem == nullptr;
}

int CSmtp::SendData(const char* text) {
    m_strErrorDetail.Empty();
    return m_bOpen && SendBytes(text, 1);
}

int CSmtp::End() {
    m_strErrorDetail.Empty();
    if (!m_bOpen) return 0;
    unsigned int code = 0;
    return WriteString("\r\n.\r\n", code);
}

int CSmtp::SendBytes(const char* text, int moreFollows) {
    const std::string_view bytes(text == nullptr ? "" : text);
    for (std::size_t at = 0; at < bytes.size();) {
        const int length = static_cast<int>(std::min<std::size_t>(bytes.size() - at, INT_MAX));
        if (m_pSocket->Send(bytes.data() + at, length, moreFollows) != length) {
            m_strErrorDetail = m_pSocket->GetError();
            return 0;
        }
        at += static_cast<std::size_t>(length);
    }
    return 1;
}

int CSmtp::WriteString(const char* text, unsigned int& code) {
    m_strErrorDetail.Empty();
    if (text == nullptr || *text == '\0') return 0;
    return SendBytes(text, 0) && ReadReply(code);
}

int CSmtp::WriteFormatString(const char* format, const char* argument, unsigned int& code) {
    m_strErrorDetail.Empty();
    if (format == nullptr) return 0;
    CString command;
    if (const char* const problem = FormatCommand(format, CString(argument).View(), command)) {
        m_strErrorDetail = problem;
        return 0;
    }
    return WriteString(command, code);
}

int CSmtp::ReadReply(unsigned int& code) {
    std::memset(m_szReply, 0, sizeof m_szReply);
    // QUIRK: one read is one reply, whole or not, be it of several lines or cut by the network (RFC 5321 4.2.1 tells a
    // reply by its lines). What a read leaves over is the answer to the next command.
    if (m_pSocket->Receive(m_szReply, sizeof m_szReply) < 3) {
        m_strErrorDetail = m_pSocket->GetError();
        return 0;
    }
    code = NumberOf(m_szReply);
    if (m_szReply[0] == '2' || m_szReply[0] == '3') return 1;
    m_strErrorDetail = ReplyText();
    return 0;
}

CString CSmtp::ReplyText() const {
    const std::string_view reply(m_szReply, sizeof m_szReply);
    return CString(reply.substr(0, reply.find('\0')));
}
