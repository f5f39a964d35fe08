#include <cerrno>

#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/transport/Command.h>
#include <mailengine/transport/Transaction.h>

namespace {

constexpr int kHostNameBytes = 256;
constexpr int kReadBytes = 4096;

CString Words(const ServerReply& reply) {
    return CString(std::string_view(reply.text));
}

bool Refuses(const ServerReply& reply) {
    return reply.code >= 400;
}

// RFC 5321 4.3.2 has 221 for QUIT, 4.2.2 what may answer any command; a refusal of mail is never an answer to it.
bool MayAnswerQuit(const ServerReply& reply) {
    return !Refuses(reply) || reply.code == 421 || (reply.code >= 500 && reply.code <= 504);
}

}  // namespace

CTransaction::CTransaction(const Envelope& envelope, CProgressCallback& progress, const CSendWait::Limits& limits)
    : m_envelope(envelope), m_wait(progress, limits) {
    m_socket.SetWait(&m_wait);
}

int CTransaction::Open() {
    if (!SayHello() || !NameEnvelope() || !AskForData()) return 0;
    m_state = kData;
    return 1;
}

int CTransaction::SayHello() {
    char hostName[kHostNameBytes] = {};
    if (CSystem::Get().HostName(hostName, kHostNameBytes) != 0) return Fail(texts::kHostNameFailed);
    CString hello;
    if (const char* const problem = FormatCommand(kHeloCommand, hostName, hello)) return Fail(problem);
    m_wait.Begin(CSendWait::kConnect);
    if (!m_socket.Connect(m_envelope.server, m_envelope.port)) return FailInSocket();
    return Ask(CSendWait::kGreeting, "", '2') && Ask(CSendWait::kHello, hello.View(), '2');
}

int CTransaction::NameEnvelope() {
    CString command;
    (void)FormatCommand(kMailCommand, m_envelope.sender.View(), command);  // checked before the connection
    int status = Ask(CSendWait::kSender, command.View(), '2');
    for (int i = 0; i < m_envelope.recipients.GetSize() && status; ++i) {
        (void)FormatCommand(kRcptCommand, m_envelope.recipients.GetAt(i).View(), command);
        status = Ask(CSendWait::kRecipient, command.View(), '2');
    }
    return status;
}

int CTransaction::AskForData() {
    return IsQuiet() && Ask(CSendWait::kDataStart, "DATA\r\n", '3');
}

// Says a command, or nothing, and takes its reply. Succeeds if that begins with the digit that is wanted.
int CTransaction::Ask(CSendWait::Step step, std::string_view command, char wanted) {
    m_wait.Begin(step);
    ServerReply reply;
    return SendBytes(command, 0) && AwaitReply(reply) && Judge(reply, wanted);
}

int CTransaction::Judge(const ServerReply& reply, char wanted) {
    if (Refuses(reply)) {
        m_result = {CMailSendRecv::kNotTaken, Words(reply), reply.code, 0};
        m_state = kCommand;
        return 0;
    }
    if (reply.text[0] != wanted) return Fail(CString(texts::kReplyOutOfStep) + "\r\n" + Words(reply));
    m_state = kCommand;
    return 1;
}

int CTransaction::WriteString(const char* text) {
    if (m_state != kData) return 0;
    std::string_view bytes(text == nullptr ? "" : text);
    if (m_buffer.size() + bytes.size() > kPieceBytes && !HandOver(m_buffer)) return 0;
    for (; bytes.size() > kPieceBytes; bytes.remove_prefix(kPieceBytes))
        if (!HandOver(bytes.substr(0, kPieceBytes))) return 0;
    m_buffer += bytes;
    return 1;
}

// The buffer is empty afterwards.
int CTransaction::HandOver(std::string_view piece) {
    m_wait.Begin(CSendWait::kDataBlock);
    const int result = IsQuiet() && SendBytes(piece, 1);
    m_buffer.clear();
    return result;
}

void CTransaction::Close() {
    if (m_state == kData) m_state = kOver;
}

void CTransaction::Finish() {
    if (m_state != kData || !HandOver(m_buffer) || !IsQuiet()) return;
    m_wait.Begin(CSendWait::kDataEnd);
    // The data have ended only if all of it went out: what failed here was not the end of a mail.
    if (!SendBytes("\r\n.\r\n", 0)) return;
    m_state = kOver;
    m_result.outcome = CMailSendRecv::kUnknown;
    ServerReply reply;
    if (AwaitReply(reply) && Judge(reply, '2')) m_result.outcome = CMailSendRecv::kTaken;
}

void CTransaction::Quit() {
    if (m_state == kCommand) {
        const CMailSendRecv::Result known = m_result;
        ServerReply reply;
        m_wait.Begin(CSendWait::kQuit);
        const int answered = SendBytes("QUIT\r\n", 0) && AwaitReply(reply);
        m_result = known;
        if (answered && known.outcome == CMailSendRecv::kTaken && !MayAnswerQuit(reply)) {
            m_result.outcome = CMailSendRecv::kUnknown;
            Fail(CString(texts::kReplyOutOfStep) + "\r\n" + Words(reply));
        }
    }
    m_state = kOver;
    (void)m_socket.Close();  // 0 says that the peer was quicker
}

int CTransaction::SendBytes(std::string_view bytes, int moreFollows) {
    if (m_socket.Send(bytes.data(), static_cast<int>(bytes.size()), moreFollows) == static_cast<int>(bytes.size()))
        return 1;
    FailInSocket();
    // A server that breaks the connection off may have said why (421 and 552 come so).
    char last[kReadBytes];
    const int received = m_socket.Receive(last, kReadBytes, 1);
    if (received > 0) m_replies.Take({last, static_cast<std::size_t>(received)});
    (void)TakeRefusal();
    return 0;
}

int CTransaction::AwaitReply(ServerReply& reply) {
    for (;;) {
        switch (m_replies.Next(reply)) {
            case CReplyReader::kWhole:
                return 1;
            case CReplyReader::kMalformed:
                return Fail(texts::kReplyMalformed);
            case CReplyReader::kTooLong:
                return Fail(texts::kReplyTooLong);
            case CReplyReader::kIncomplete:
                break;
        }
        char bytes[kReadBytes];
        const int received = m_socket.Receive(bytes, kReadBytes);
        if (received < 0) return FailInSocket();
        if (received == 0) return Fail(texts::kServerClosed);
        m_replies.Take({bytes, static_cast<std::size_t>(received)});
    }
}

// Whether the connection stands and nothing has come that no command asked for.
int CTransaction::IsQuiet() {
    if (m_replies.IsEmpty()) {
        char bytes[kReadBytes];
        const int received = m_socket.Receive(bytes, kReadBytes, 1);
        if (received < 0) return m_socket.GetErrorNumber() == EAGAIN ? 1 : FailInSocket();
        if (received == 0) return Fail(texts::kServerClosed);
        m_replies.Take({bytes, static_cast<std::size_t>(received)});
    }
    Fail(texts::kReplyOutOfStep);
    return TakeRefusal();
}

// Makes a refusal that came unasked the reason why the mail was given up. Always 0.
int CTransaction::TakeRefusal() {
    ServerReply reply;
    if (m_replies.Next(reply) == CReplyReader::kWhole && Refuses(reply))
        m_result = {CMailSendRecv::kNotTaken, Words(reply), reply.code, 0};
    return 0;
}

// Always 0, for the caller to hand on; and the session is over.
int CTransaction::Fail(const CString& text) {
    m_state = kOver;
    const bool unknown = m_result.outcome == CMailSendRecv::kUnknown;
    m_result.text = !unknown ? text : CString(texts::kVerdictMissing) + (text.IsEmpty() ? "" : "\r\n") + text;
    return 0;
}

int CTransaction::FailInSocket() {
    const int number = m_socket.GetErrorNumber();
    if (number == ECANCELED) return Fail("");  // nobody has to explain a cancel to the user who pressed the button
    m_result.systemError = number;
    return Fail(m_socket.GetError());
}
