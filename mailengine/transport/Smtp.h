// CSmtp: one session of a client with an SMTP server (RFC 5321), in the oldest form that every server takes: HELO,
// MAIL, RCPT, DATA, QUIT. It knows nothing of mails: text comes as strings and goes out as it is. The order of calls
// for one mail is Open, Start, SendData as often as wanted, End, Close; the session itself does not watch over it.
//
// One thread. While a session waits for its server the window system's messages go on being dispatched, and handlers
// that they reach must not call into it. Each int result is non-zero for success; the text of a failure, code page 932
// or the server's own words, stays until the next operation begins.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

class CSocketClient;

class MAILENGINE_API CSmtp {
public:
    // Each entry of RCPT is an answer to wait for, and every server must take this many (RFC 5321 4.5.3.1.8).
    static constexpr int kMaxRecipients = 100;
    // The longest command, its CRLF and a NUL behind it included; RFC 5321 4.5.3.1.4 allows 512 without the NUL.
    static constexpr int kCommandBytes = 512;

    // No session stands yet; connects to nobody.
    CSmtp();
    CSmtp(const CSmtp&) = delete;
    CSmtp& operator=(const CSmtp&) = delete;
    // Closes a session that is open, QUIT included, and the connection in any case.
    virtual ~CSmtp();

    // Whether a session stands: 1 from a successful Open to Close.
    int IsOpen() { return m_bOpen; }

    // Connects to server, a name or a dotted address, takes the greeting and says HELO with this machine's name. 0: no
    // session stands; a connection that was refused later than at its making stays until the object is destroyed.
    [[nodiscard]] int Open(const char* server, int port);
    // Says QUIT and closes the connection. The session is over whatever comes; 0 only tells that QUIT was not answered
    // as it should or the connection could not be shut down. The text of the failure before stays. 1 if none is open.
    int Close();
    // Opens a mail: MAIL with sender, RCPT for each recipient in order, DATA. It stops at the first refusal, with the
    // server's words as text. 0 with nothing sent: more than kMaxRecipients (no text), no session (no text), or an
    // address that holds CR, LF or NUL or is too long for its command, be it the last one: nobody can smuggle a command
    // in through an address, and no mail goes to half of its recipients. An empty array is not refused here.
    [[nodiscard]] int Start(const char* sender, const CStringArray& recipients);
    // Sends the bytes of text up to its NUL, unchanged: no dot is doubled (RFC 5321 4.5.2) and no line end looked at.
    // Nothing is read. An empty text succeeds.
    [[nodiscard]] int SendData(const char* text);
    // Ends the mail's data with CRLF, dot, CRLF, and takes the server's verdict on the mail. Text that ends in CRLF
    // thus gets one empty line more.
    [[nodiscard]] int End();
    // Copies the text of the last failure: empty if there was none, if the peer closed the connection, and if a reply
    // had fewer than 3 bytes.
    void GetErrorDetail(CString& detail) { detail = m_strErrorDetail; }

protected:
    // Sends text, a command with its line end, and reads the reply; code takes its number. An empty text fails.
    [[nodiscard]] int WriteString(const char* text, unsigned int& code);
    // The same with format, in which argument, if it is not null, takes the place of %s. 0 with nothing sent: the
    // command is too long, or argument holds CR or LF.
    [[nodiscard]] int WriteFormatString(const char* format, const char* argument, unsigned int& code);
    // Takes what one read gives for the reply; succeeds if it begins with 2 or 3. code takes the number of its first
    // three bytes, unless there are fewer.
    [[nodiscard]] int ReadReply(unsigned int& code);

private:
    CString ReplyText() const;
    int SendBytes(const char* text, int moreFollows);
    int CheckEnvelope(const char* sender, const CStringArray& recipients);

    CSocketClient* m_pSocket;
    int m_bOpen = 0;
    char m_szReply[512] = {};  // the last reply; one that fills it has no NUL
    CString m_strErrorDetail;
};
