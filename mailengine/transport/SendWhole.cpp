#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <string_view>
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

// All that can be seen of the envelope to fail before anybody is connected to.
int PrepareEnvelope(const CMailDoc& doc, const CStringArray& blindRecipients, Envelope& envelope, CString& error) {
    if (!TakeEnvelope(doc, envelope, error)) return 0;
    for (int i = 0; i < blindRecipients.GetSize(); ++i)
        envelope.recipients.SetAtGrow(envelope.recipients.GetSize(), blindRecipients.GetAt(i));
    NameOnce(envelope.recipients);
    return CheckEnvelope(envelope, error);
}

// The session from the connection to QUIT. write gives the stream the message.
CMailSendRecv::Result Deliver(const Envelope& envelope, CProgressCallback& progress, const CSendWait::Limits& limits,
                              const std::function<int(COutputStream&, CString&)>& write) {
    CMailSendRecv::Result result;
    CTransaction transaction(envelope, progress, limits);
    CTransparencyStream lines(transaction);
    const int opened = lines.Open();
    const int written = opened && write(lines, result.text);
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

// Without its last line end, which is that in front of the final dot.
std::string_view WithoutLastEnd(std::string_view message) {
    const bool hasLf = message.ends_with('\n');
    if (hasLf) message.remove_suffix(1);
    const bool hasCr = message.ends_with('\r');
    if (hasCr) message.remove_suffix(1);
    return message;
}

int WritePieces(std::string_view message, COutputStream& stream, CProgressCallback& progress) {
    constexpr std::size_t kPieceBytes = 16384;
    for (; !message.empty(); message.remove_prefix(std::min(kPieceBytes, message.size()))) {
        const std::string piece(message.substr(0, kPieceBytes));
        if (stream.WriteString(piece.c_str()) == 0) return 0;
        if (progress.Callback(static_cast<unsigned int>(piece.size())) == 0) return 0;
    }
    return 1;
}

}  // namespace

CMailSendRecv::Result SendWhole(const CMailDoc& doc, const CStringArray& blindRecipients, CProgressCallback& progress,
                                const CSendWait::Limits& limits) {
    CMailSendRecv::Result result;
    Envelope envelope;
    if (progress.UserCanceled() || !PrepareEnvelope(doc, blindRecipients, envelope, result.text) ||
        !CheckFiles(doc, result.text))
        return result;
    return Deliver(envelope, progress, limits, [&](COutputStream& stream, CString& error) {
        return CEMailWriter(&stream, doc, progress).Write(error);
    });
}

CMailSendRecv::Result SendMessage(const CMailDoc& envelope, const CString& message, CProgressCallback& progress,
                                  const CSendWait::Limits& limits) {
    CMailSendRecv::Result result;
    Envelope where;
    if (progress.UserCanceled() || !PrepareEnvelope(envelope, CStringArray(), where, result.text)) return result;
    if (message.View().find('\0') != std::string_view::npos) {
        result.text = texts::kMessageHasNul;
        return result;
    }
    return Deliver(where, progress, limits, [&](COutputStream& stream, CString&) {
        return WritePieces(WithoutLastEnd(message.View()), stream, progress);
    });
}
