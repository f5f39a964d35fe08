#include <filesystem>
#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/LetterWarning.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/letter/SaveLetter.h>

#include <mailengine/mailengine.h>

namespace hostkit {

namespace {

// The writer's text asks whether an attachment was moved. The system says more of a file that it does not give.
[[noreturn]] void ThrowReason(const CarriedFiles& carried, const CString& error) {
    carried.CheckReadable();
    throw Failure(FailureKind::Input, {}, carried.InUsersNames(OneLine(error)));
}

// The new file goes with its target, so nothing stays of a message that was cancelled.
Outcome Save(CMailDoc& doc, OutputTarget& target, const Progress& progress) {
    CheckAreNotTarget(doc, target);
    const CarriedFiles carried(doc, Copied::Needed);
    const AttachmentWatch watch = carried.Watch();
    const std::string warning = LetterWarning(doc, carried);
    WatchedStream stream(target.Open(), watch);
    ProgressOperation operation(Words("Saving"), doc.GetMailSize(), progress);
    CString error;
    const int written = CEMailWriter(&stream, doc, operation.Engine()).Write(error);
    if (written) operation.Complete();
    if (!written && operation.IsCancelled())
        return {Outcome::State::Cancelled, Words("cancelled; the mail was not written"), target.Name()};
    target.CheckWritten();
    watch.Check();
    if (!written) ThrowReason(carried, error);
    Outcome done{Outcome::State::Done, warning, target.Name()};
    target.Commit();  // nothing may fail behind it
    return done;
}

Outcome Failed(const Failure& failure, const std::filesystem::path& file) {
    return {Outcome::State::Failed, failure.what(), file, failure};
}

}  // namespace

Outcome SaveLetter(CMailDoc& doc, const std::filesystem::path& file, const Progress& progress) {
    try {
        OutputTarget target(file);
        return Save(doc, target, progress);
    } catch (const Failure& failure) {
        return Failed(failure, file);
    }
}

Outcome SaveLetter(CMailDoc& doc, OutputTarget& target, const Progress& progress) {
    try {
        return Save(doc, target, progress);
    } catch (const Failure& failure) {
        return Failed(failure, target.Name());
    }
}

}  // namespace hostkit
