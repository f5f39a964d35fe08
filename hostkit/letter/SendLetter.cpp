#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/BlindCopies.h>
#include <hostkit/letter/DeliveryWords.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/LetterWarning.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/letter/SendLetter.h>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/MailSendRecv.h>

namespace hostkit {

namespace {

Outcome NotDone(Outcome::State state, const Failure& failure) {
    return {state, failure.what(), {}, failure};
}

Outcome OutcomeOf(const CMailSendRecv::Result& result, const CMailDoc& doc, const CarriedFiles& carried,
                  const std::string& warning) {
    if (result.outcome == CMailSendRecv::kTaken) return {Outcome::State::Done, warning};
    const std::string reason = carried.InUsersNames(ReasonOf(result, doc));
    if (result.outcome == CMailSendRecv::kUnknown)
        return NotDone(Outcome::State::Unknown,
                       {FailureKind::Delivery, {}, Words("the server may have taken the mail: {1}", reason)});
    if (reason.empty()) return {Outcome::State::Cancelled, Words("cancelled; the mail was not sent")};
    if (!AsksForLogin(result))
        return NotDone(Outcome::State::Failed,
                       {FailureKind::Delivery, {}, Words("the mail was not sent: {1}", reason)});
    return NotDone(
        Outcome::State::Failed,
        {FailureKind::Login, {}, Words("the mail was not sent: {1}: the server asks for login or encryption", reason)});
}

}  // namespace

Outcome SendLetter(CMailDoc& doc, const Progress& progress) {
    try {
        CheckEnvelope(doc);
        CheckAttachments(doc);
        const CarriedFiles carried(doc, Copied::All);
        const std::string warning = LetterWarning(doc, carried);
        const BlindCopies blind(doc);
        ProgressOperation operation(Words("Sending"), doc.GetMailSize(), progress);
        const CMailSendRecv::Result result = CMailSendRecv::SendWhole(doc, blind.Recipients(), operation.Engine());
        if (result.outcome == CMailSendRecv::kTaken) operation.Complete();
        return OutcomeOf(result, doc, carried, warning);
    } catch (const Failure& failure) {
        return NotDone(Outcome::State::Failed, failure);
    }
}

}  // namespace hostkit
