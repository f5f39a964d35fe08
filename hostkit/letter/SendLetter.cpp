#include <algorithm>
#include <climits>
#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/BlindCopies.h>
#include <hostkit/letter/DeliveryWords.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/LetterWarning.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/letter/SendLetter.h>

#include <mailengine/support/FileUtility.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/MailSendRecv.h>

namespace hostkit {

namespace {

Outcome NotSent() {
    return {Outcome::State::Cancelled, Words("cancelled; the mail was not sent")};
}

// What is copied and what is sent, as far as the engine counts.
unsigned int BytesToDo(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    std::uint64_t bytes = doc.GetMailSize();
    for (const CMailDoc::FileInfo& file : files)
        bytes += static_cast<std::uint64_t>(CFileUtility::GetFileSize(file.Path));
    return static_cast<unsigned int>(std::min<std::uint64_t>(bytes, UINT_MAX));
}

Outcome NotDone(Outcome::State state, const Failure& failure) {
    return {state, failure.what(), {}, failure};
}

Outcome OutcomeOf(const CMailSendRecv::Result& result, const std::string& reason) {
    if (result.outcome == CMailSendRecv::kTaken) return {};
    if (result.outcome == CMailSendRecv::kUnknown)
        return NotDone(Outcome::State::Unknown,
                       {FailureKind::Delivery, {}, Words("the server may have taken the mail: {1}", reason)});
    if (reason.empty()) return NotSent();
    const FailureKind kind = KindOf(result);
    const std::string text = kind == FailureKind::Login
                                 ? Words("the mail was not sent: {1}: the server asks for login or encryption", reason)
                                 : Words("the mail was not sent: {1}", reason);
    return NotDone(Outcome::State::Failed, {kind, {}, text});
}

}  // namespace

Outcome SendLetter(CMailDoc& doc, const Progress& progress) {
    try {
        CheckEnvelope(doc);
        CheckAttachments(doc);
        ProgressOperation operation(Words("Sending"), BytesToDo(doc), progress);
        const CarriedFiles carried(doc, Copied::All, [&](std::size_t bytes) {
            return operation.Engine().Callback(static_cast<unsigned int>(bytes)) != 0;
        });
        const std::string warning = LetterWarning(doc, carried);
        const BlindCopies blind(doc);
        const CMailSendRecv::Result result = CMailSendRecv::SendWhole(doc, blind.Recipients(), operation.Engine());
        if (result.outcome == CMailSendRecv::kTaken) operation.Complete();
        Outcome outcome = OutcomeOf(result, carried.InUsersNames(ReasonOf(result, doc)));
        if (outcome) outcome.text = warning;
        return outcome;
    } catch (const CarriedFiles::Cancelled&) {
        return NotSent();
    } catch (const Failure& failure) {
        return NotDone(Outcome::State::Failed, failure);
    }
}

Outcome SendLetter(const FinishedMail& mail, CMailDoc& doc, const Progress& progress) {
    try {
        CheckEnvelope(doc);
        CheckSendable(mail);
        const auto bytes = static_cast<unsigned int>(std::min<std::size_t>(mail.message.size(), INT_MAX));
        ProgressOperation operation(Words("Sending"), bytes, progress);
        const CMailSendRecv::Result result = CMailSendRecv::SendMessage(doc, CString(mail.message), operation.Engine());
        if (result.outcome == CMailSendRecv::kTaken) operation.Complete();
        return OutcomeOf(result, ReasonOf(result, doc));
    } catch (const Failure& failure) {
        return NotDone(Outcome::State::Failed, failure);
    }
}

}  // namespace hostkit
