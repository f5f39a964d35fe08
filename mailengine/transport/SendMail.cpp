#include <cstdint>
#include <string_view>
#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/support/platform/text/StringArray.h>
#include <mailengine/transport/SendMail.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/transport/TransparencyStream.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

// Where a mail goes, as the document tells it.
struct Envelope {
    CString server;
    std::int32_t port = 0;
    CString sender;
    CStringArray recipients;
};

// The writer's own check of the attachments, made before anybody is connected to.
class CAttachmentCheck : public CEMailWriter {
public:
    using CEMailWriter::CEMailWriter;
    int Check(const CMailDoc& doc, CString& error) {
        std::vector<FileInfo> files;
        doc.GetFiles(files);
        return CheckFiles(files, error);
    }
};

// Ends a wait on the server at its limit, and when the user cancels.
class CSendWait : public CSocketWait {
public:
    CSendWait(CProgressCallback& progress, const SendLimits& limits) : m_progress(progress), m_limits(limits) {}

    int TimeLimit(int step) override {
        m_nStep = step;
        return m_limits[static_cast<std::size_t>(step)];
    }
    // The progress object tells a cancel once, to whoever asks first: the writer may have been the one. At QUIT what
    // became of the mail is known, and a press comes too late to change it.
    int GoOn() override { return m_nStep == CSmtp::kQuit || (!m_progress.UserCanceled() && m_progress.Callback(0)); }

private:
    int m_nStep = CSmtp::kConnect;
    CProgressCallback& m_progress;
    const SendLimits& m_limits;
};

void AddRecipient(const CAddress* address, CStringArray& recipients) {
    if (address != nullptr) recipients.SetAtGrow(recipients.GetSize(), address->GetMailAddress());
}

void TakeRecipients(const CMailDoc& doc, CStringArray& recipients) {
    for (unsigned int i = 0; i < doc.GetToAddressSize(); ++i)
        AddRecipient(doc.GetToAddress(i), recipients);
    for (unsigned int i = 0; i < doc.GetCcAddressSize(); ++i)
        AddRecipient(doc.GetCcAddress(i), recipients);
    for (unsigned int i = 0; i < doc.GetBccAddressSize(); ++i)
        AddRecipient(doc.GetBccAddress(i), recipients);
    CAddress from;
    doc.GetFromAddress(from);
    if (doc.GetSenderBccFlg()) AddRecipient(&from, recipients);
}

bool IsFitToSend(const CString& name) {
    return name.View().find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

int TakeEnvelope(const CMailDoc& doc, Envelope& envelope, CString& error) {
    doc.GetSendServer(envelope.server, envelope.port);
    CAddress from;
    doc.GetFromAddress(from);
    envelope.sender = from.GetMailAddress();
    const char* problem = nullptr;
    if (envelope.server.IsEmpty())
        problem = "SendServer is empty.";
    else if (envelope.port < 0)
        problem = "SendPort is invalid.";
    else if (envelope.sender.IsEmpty())
        problem = "Sender is empty.";
    else if (!IsFitToSend(envelope.server) || !IsFitToSend(envelope.sender))  // a NUL would cut it to another name
        problem = texts::kAddressUnusable;
    if (problem != nullptr) {
        error = problem;
        return 0;
    }
    TakeRecipients(doc, envelope.recipients);
    return 1;
}

// Ends a mail so that the server gets the whole of it or nothing. The dialog stands until the verdict, for which the
// user may have to wait long.
int EndWhole(int written, CProgressCallback& progress, CSmtpStream& stream, CString& error) {
    if (!written) stream.Abort();
    const int taken = written && stream.Finish();
    progress.Complete();
    CString detail;
    stream.GetErrorDetail(detail);
    // A stream that failed tells more than the writer, which only saw that it did.
    if (!taken && (written || !detail.IsEmpty())) error = detail;
    return taken;
}

int SendOnStream(const CMailDoc& doc, CProgressCallback& progress, int whole, CSmtpStream& stream, CString& error) {
    CTransparencyStream lines(stream);
    if (!lines.Open()) {
        stream.GetErrorDetail(error);
        return 0;
    }
    const int written = CEMailWriter(&lines, doc, progress).Write(error);
    if (whole) return EndWhole(written, progress, stream, error);
    progress.Complete();
    lines.Close();
    return written;
}

}  // namespace

int SendMail(const CMailDoc& doc, CProgressCallback& progress, CString& error, const SendPolicy& policy) {
    if (policy.whole && progress.UserCanceled()) return 0;
    Envelope envelope;
    if (!TakeEnvelope(doc, envelope, error)) return 0;
    if (policy.whole && !CAttachmentCheck(nullptr, doc, progress).Check(doc, error)) return 0;
    CSendWait wait(progress, policy.limits);
    CSmtpStream stream(envelope.server, envelope.port, envelope.sender, envelope.recipients);
    if (policy.whole) stream.SetWait(&wait);
    CString text = error;
    const int result = SendOnStream(doc, progress, policy.whole, stream, text);
    // Nobody has to explain a cancel to the user who pressed the button.
    if (!result && !(policy.whole && progress.UserCanceled())) error = text;
    return result;
}
