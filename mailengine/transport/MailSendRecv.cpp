#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SendMail.h>

int CMailSendRecv::SendWhole(const CMailDoc& doc, CProgressCallback& progress, CString& error) {
    return SendMail(doc, progress, error, kSendWhole);
}

int CMailSendRecv::Send(const CMailDoc& doc, CProgressCallback& progress, CString& error) {
    return SendMail(doc, progress, error, kSendAsWritten);
}

int CMailSendRecv::IsSending() {
    return 0;
}

int CMailSendRecv::Receive(CMailDoc& doc, CProgressCallback& progress) {
    (void)doc;
    (void)progress;
    return 0;
}
