#include <cstring>
#include <string_view>

#include <mailengine/transport/SmtpStream.h>

CSmtpStream::CSmtpStream(const char* server, int port, const char* sender, const CStringArray& recipients)
    : m_strServer(server), m_nPort(port), m_strSender(sender), m_arrRecipients(recipients) {}

CSmtpStream::~CSmtpStream() {
    if (m_bOpen) CSmtpStream::Close();
}

int CSmtpStream::Open() {
    if (m_bOpen) return 1;
    m_strBuffer.Empty();
    m_bOpen = m_smtp.Open(m_strServer, m_nPort);
    if (!m_bOpen) return 0;
    m_bOpen = m_smtp.Start(m_strSender, m_arrRecipients);
    if (!m_bOpen) (void)m_smtp.Close();  // why the mail was refused is the text that counts
    return m_bOpen;
}

int CSmtpStream::WriteString(const char* text) {
    if (!m_bOpen) return 0;
    const std::string_view bytes(text == nullptr ? "" : text);
    int result = 1;
    if (m_strBuffer.View().size() + bytes.size() > kBufferBytes) result = HandOver();
    m_strBuffer += bytes;
    return result;
}

// The buffer is empty afterwards, whatever came of it. Handing over an empty one sends nothing and succeeds.
int CSmtpStream::HandOver() {
    const int result = m_smtp.SendData(m_strBuffer);
    m_strBuffer.Empty();
    return result;
}

void CSmtpStream::Close() {
    if (!m_bOpen) return;
    (void)HandOver();  // the mail goes out as far as it got
    (void)m_smtp.End();
    (void)m_smtp.Close();
    m_bOpen = 0;
}
