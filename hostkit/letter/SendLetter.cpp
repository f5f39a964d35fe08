#include <hostkit/letter/Attachment.h>
#include <hostkit/letter/AttachmentCopies.h>
#include <hostkit/letter/BlindCopies.h>
#include <hostkit/letter/DeliveryWords.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/letter/SendLetter.h>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/MailSendRecv.h>

namespace hostkit {

namespace {

Outcome NotDone(Outcome::State state, const Failure& failure) {
    return {state, failure.what(), {}, failure};
}

Outcome OutcomeOf(const CMailSendRecv::Result& result, const CMailDoc& doc) {
    if (result.outcome == CMailSendRecv::kTaken) return {};
    const std::string reason = ReasonOf(result, doc);
    if (result.outcome == CMailSendRecv::kUnknown)
        return NotDone(Outcome::State::Unknown,
                       {FailureKind::Delivery, {}, "the server may have taken the mail: " + reason});
    if (reason.empty()) return {Outcome::State::Cancelled, "cancelled; the mail was not sent"};
    const std::string fact = "the mail was not sent: " + reason;
    if (!AsksForLogin(result)) return NotDone(Outcome::State::Failed, {FailureKind::Delivery, {}, fact});
    return NotDone(Outcome::State::Failed,
                   {FailureKind::Login, {}, fact + ": the server asks for login or encryption"});
}

}  // namespace

Outcome SendLetter(CMailDoc& doc, const Progress& progress) {
    try {
        CheckEnvelope(doc);
        CheckAttachedMails(doc);
        CheckAttachments(doc);
        const AttachmentCopies copies(doc, Copied::All);
        const BlindCopies blind(doc);
        ProgressOperation operation("送信中", doc.GetMailSize(), progress);
        const CMailSendRecv::Result result = CMailSendRecv::SendWhole(doc, blind.Recipients(), operation.Engine());
        if (result.outcome == CMailSendRecv::kTaken) operation.Complete();
        return OutcomeOf(result, doc);
    } catch (const Failure& failure) {
        return NotDone(Outcome::State::Failed, failure);
    }
}

}  // namespace hostkit
