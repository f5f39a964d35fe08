// CTransaction: one connection to a server and the one mail transaction on it (RFC 5321 3.3), for SendWhole. It takes
// replies as the server meant them (CReplyReader), judges each command by its own, and knows at any moment what became
// of the mail. The writer writes on it as on any stream, through a CTransparencyStream.
//
// The dialogue stays in step (RFC 5321 4.3.1). The n-th reply answers the n-th command, also where an eager server sent
// it early; but a go-ahead that came before DATA, or a verdict that came before the final dot, is about something else,
// and whoever believed it would have his text run as commands or his mail lost. Where anything has come that nobody
// asked for, the mail is given up before its end, and nobody gets it.
//
// One thread; handlers that run while it waits must not touch it.
#pragma once

#include <string>
#include <string_view>

#include <mailengine/transport/Envelope.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/ReplyReader.h>
#include <mailengine/transport/SendWait.h>
#include <mailengine/transport/SocketClient.h>
#include <mailengine/writer/OutputStream.h>

class CTransaction : public COutputStream {
public:
    // Text goes to the server in pieces of at most this many bytes.
    static constexpr std::size_t kPieceBytes = 65536;

    // envelope, lent like the others, holds nothing that may not be sent.
    CTransaction(const Envelope& envelope, CProgressCallback& progress, const CSendWait::Limits& limits);

    // Connects and opens the mail up to the go-ahead for its data. Once only.
    [[nodiscard]] int Open() override;
    // 0: the mail is not open, or was given up now.
    [[nodiscard]] int WriteString(const char* text) override;
    // Gives the mail up if it is still open: the connection will be dropped without the final dot, and the server
    // throws away what it has (RFC 5321 4.1.1.4).
    void Close() override;
    // Ends the data and takes the verdict.
    void Finish();
    // Ends the session: with QUIT where a command may be said, and by closing the connection. A cancel ends the wait
    // for the answer, and does not change what became of the mail.
    void Quit();

    // What became of the mail so far. The text is empty as long as nothing failed, and where the user cancelled.
    const CMailSendRecv::Result& Result() const { return m_result; }

private:
    // What may go out now: nothing (any more), a command, mail data.
    enum State { kOver, kCommand, kData };

    int SayHello();
    int NameEnvelope();
    int AskForData();
    int Ask(CSendWait::Step step, std::string_view command, char wanted);
    int Judge(const ServerReply& reply, char wanted);
    int HandOver(std::string_view piece);
    int SendBytes(std::string_view bytes, int moreFollows);
    int AwaitReply(ServerReply& reply);
    int IsQuiet();
    int TakeRefusal();
    int Fail(const CString& text);
    int FailInSocket();

    const Envelope& m_envelope;
    CSendWait m_wait;
    CSocketClient m_socket;
    CReplyReader m_replies;
    CMailSendRecv::Result m_result;
    State m_state = kOver;
    std::string m_buffer;  // text that has not gone out
};
