#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/Envelope.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SendWhole.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/transport/TransparencyStream.h>
#include <mailengine/writer/EMailWriter.h>

CMailSendRecv::Result CMailSendRecv::SendWhole(const CMailDoc& doc, const CStringArray& blindRecipients,
                                               CProgressCallback& progress) {
    return ::SendWhole(doc, blindRecipients, progress, kSendLimits);
}

CMailSendRecv::Result CMailSendRecv::SendMessage(const CMailDoc& envelope, const CString& message,
                                                 CProgressCallback& progress) {
    return ::SendMessage(envelope, message, progress, kSendLimits);
}

int CMailSendRecv::SendWhole(const CMailDoc& doc, CProgressCallback& progress, CString& error) {
    const Result result = SendWhole(doc, CStringArray(), progress);
    if (!result.text.IsEmpty()) error = result.text;
    return result.outcome == kTaken;
}

int CMailSendRecv::Send(const CMailDoc& doc, CProgressCallback& progress, CString& error) {
    Envelope envelope;
    if (!TakeEnvelope(doc, envelope, error)) return 0;
    CSmtpStream stream(envelope.server, envelope.port, envelope.sender, envelope.recipients);
    CTransparencyStream lines(stream);
    if (!lines.Open()) {
        stream.GetErrorDetail(error);
        return 0;
    }
    const int written = CEMailWriter(&lines, doc, progress).Write(error);
    progress.Complete();
    lines.Close();
    return written;
}

int CMailSendRecv::IsSending() {
    return 0;
}

int CMailSendRecv::Receive(CMailDoc& doc, CProgressCallback& progress) {
    (void)doc;
    (void)progress;
    return 0;
}
