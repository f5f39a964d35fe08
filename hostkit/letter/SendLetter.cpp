#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
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

Outcome OutcomeOf(const CMailSendRecv::Result& result, const CMailDoc& doc, const CarriedFiles& carried) {
    if (result.outcome == CMailSendRecv::kTaken) return {Outcome::State::Done, carried.Warning()};
    const std::string reason = carried.InUsersNames(ReasonOf(result, doc));
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
        CheckAttachments(doc);
        const CarriedFiles carried(doc, Copied::All);
        const BlindCopies blind(doc);
        ProgressOperation operation("送信中", doc.GetMailSize(), progress);
        const CMailSendRecv::Result result = CMailSendRecv::SendWhole(doc, blind.Recipients(), operation.Engine());
        if (result.outcome == CMailSendRecv::kTaken) operation.Complete();
        return OutcomeOf(result, doc, carried);
    } catch (const Failure& failure) {
        return NotDone(Outcome::State::Failed, failure);
    }
}

}  // namespace hostkit
