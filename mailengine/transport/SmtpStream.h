// CSmtpStream: lets the message writer write onto an SMTP session as it writes onto a file. Opening the stream opens
// the session and the mail up to DATA, closing it ends the data and the session. It changes no byte: a leading dot and
// a bare CR or LF go out as they come. One stream, one thread; handlers that run while it waits must not call into it.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/writer/OutputStream.h>

class MAILENGINE_API CSmtpStream : public COutputStream {
public:
    // Text is handed to the session when the buffer would pass this many bytes.
    static constexpr int kBufferBytes = 4096;

    // Copies its arguments: the server's name or dotted address, its port, and the envelope's mail addresses. Makes no
    // connection.
    CSmtpStream(const char* server, int port, const char* sender, const CStringArray& recipients);
    CSmtpStream(const CSmtpStream&) = delete;
    CSmtpStream& operator=(const CSmtpStream&) = delete;
    // Ends an open mail as Close does: it goes out as far as it was written.
    ~CSmtpStream() override;

    // Connects and opens the mail, ready for its data. Opening an open stream succeeds and does nothing; a closed one
    // opens a new connection for the same mail. 0: no mail is open, and GetErrorDetail tells why; a session that stood
    // was ended with QUIT.
    [[nodiscard]] int Open() override;
    // Hands over what is left, ends the data with the final dot and says QUIT, each whatever the one before gave: the
    // server gets the mail as far as it was written. Only a failure to end the data shows, as the text afterwards.
    void Close() override;
    // Takes the bytes of text up to its NUL, unchanged and in one piece. 0: the stream is not open, or a hand-over in
    // this call failed; the bytes handed over are lost, and text is kept for the next hand-over all the same.
    [[nodiscard]] int WriteString(const char* text) override;

    // The text of the session's last failure, code page 932 or the server's own words; may be empty.
    void GetErrorDetail(CString& detail) { m_smtp.GetErrorDetail(detail); }

private:
    int HandOver();

    CString m_strServer;
    int m_nPort;
    CString m_strSender;
    CStringArray m_arrRecipients;
    CSmtp m_smtp;
    int m_bOpen = 0;      // a mail is open on the session
    CString m_strBuffer;  // text not yet handed to the session
};
