#include <set>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/transport/Command.h>
#include <mailengine/transport/SendWhole.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/transport/Transaction.h>
#include <mailengine/transport/TransparencyStream.h>
#include <mailengine/writer/AttachmentCheck.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

int CheckEnvelope(const Envelope& envelope, CString& error) {
    const int recipients = envelope.recipients.GetSize();
    const char* const problem = recipients == 0 ? texts::kNoRecipients
                                : recipients > CSmtp::kMaxRecipients
                                    ? texts::kTooManyRecipients
                                    : EnvelopeProblem(envelope.sender.View(), envelope.recipients);
    if (problem != nullptr) error = problem;
    return problem == nullptr;
}

int CheckFiles(const CMailDoc& doc, CString& error) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    return CheckAttachments(files, error);
}

// An address as it is compared: of its two halves only the domain knows no case (RFC 5321 2.4).
std::string Compared(const CString& address) {
    std::string text(address.View());
    for (std::size_t i = text.rfind('@'); i < text.size(); ++i)
        if (text[i] >= 'A' && text[i] <= 'Z') text[i] = static_cast<char>(text[i] - 'A' + 'a');
    return text;
}

// Each recipient once, where it stands first: a server may take a second naming for a second copy.
void NameOnce(CStringArray& recipients) {
    std::set<std::string> named;
    CStringArray once;
    for (int i = 0; i < recipients.GetSize(); ++i)
        if (named.insert(Compared(recipients.GetAt(i))).second) once.SetAtGrow(once.GetSize(), recipients.GetAt(i));
    recipients = once;
}

// All that can be seen to fail before anybody is connected to.
int Prepare(const CMailDoc& doc, const CStringArray& blindRecipients, Envelope& envelope, CString& error) {
    if (!TakeEnvelope(doc, envelope, error)) return 0;
    for (int i = 0; i < blindRecipients.GetSize(); ++i)
        envelope.recipients.SetAtGrow(envelope.recipients.GetSize(), blindRecipients.GetAt(i));
    NameOnce(envelope.recipients);
    return CheckEnvelope(envelope, error) && CheckFiles(doc, error);
}

}  // namespace

CMailSendRecv::Result SendWhole(const CMailDoc& doc, const CStringArray& blindRecipients, CProgressCallback& progress,
                                const CSendWait::Limits& limits) {
    CMailSendRecv::Result result;
    Envelope envelope;
    if (progress.UserCanceled() || !Prepare(doc, blindRecipients, envelope, result.text)) return result;
    CTransaction transaction(envelope, progress, limits);
    CTransparencyStream lines(transaction);
    const int opened = lines.Open();
    const int written = opened && CEMailWriter(&lines, doc, progress).Write(result.text);
    if (written) transaction.Finish();
    lines.Close();
    transaction.Quit();
    // The dialog stands until the verdict, for which the user may have to wait long.
    if (opened) progress.Complete();
    if (opened && !written && transaction.Result().text.IsEmpty()) {
        if (progress.UserCanceled()) result.text.Empty();
        return result;
    }
    return transaction.Result();
}
