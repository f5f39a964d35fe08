#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/transport/Envelope.h>
#include <mailengine/transport/SendWhole.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/transport/TransparencyStream.h>
#include <mailengine/writer/AttachmentCheck.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

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

int SendOnStream(const CMailDoc& doc, CProgressCallback& progress, CSmtpStream& stream, CString& error) {
    CTransparencyStream lines(stream);
    if (!lines.Open()) {
        stream.GetErrorDetail(error);
        return 0;
    }
    return EndWhole(CEMailWriter(&lines, doc, progress).Write(error), progress, stream, error);
}

int CheckFiles(const CMailDoc& doc, CString& error) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    return CheckAttachments(files, error);
}

}  // namespace

int SendWhole(const CMailDoc& doc, CProgressCallback& progress, CString& error, const SendLimits& limits) {
    Envelope envelope;
    if (progress.UserCanceled() || !TakeEnvelope(doc, envelope, error) || !CheckFiles(doc, error)) return 0;
    CSendWait wait(progress, limits);
    CSmtpStream stream(envelope.server, envelope.port, envelope.sender, envelope.recipients);
    stream.SetWait(&wait);
    CString text = error;
    const int result = SendOnStream(doc, progress, stream, text);
    // Nobody has to explain a cancel to the user who pressed the button.
    if (!result && !progress.UserCanceled()) error = text;
    return result;
}
