#include <cstring>
#include <filesystem>
#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/letter/SaveLetter.h>

#include <mailengine/mailengine.h>

namespace hostkit {

namespace {

// An attached mail stands as it is, any other file as Base64, in lines of 72 characters.
bool IsTooLargeToRead(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    std::uintmax_t bytes = 0;
    for (const CMailDoc::FileInfo& file : files) {
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(platform::ToNativePath(file.Path), gone);
        const bool isMail = CFileUtility::GetFileExt(file.Path) == "eml";
        if (!gone) bytes += isMail ? size : size / 54 * 74;
    }
    return bytes > kMaxMessageBytes;
}

// What others may refuse in the written mail, empty if nothing.
std::string WarningFor(const CMailDoc& doc) {
    constexpr int kMaxLineBytes = 998;  // RFC 5322 2.1.1
    if (IsTooLargeToRead(doc))
        return Words("the mail has 2 GiB or more; mailengine, as many others, cannot read it again");
    CString subject;
    doc.GetSubject(subject);
    const int line = subject.GetLength() + static_cast<int>(std::strlen("Subject: "));
    if (CLanguage::IsJapanese(subject) || line <= kMaxLineBytes) return "";
    return Words("the subject is one line of {1} bytes; servers may refuse more than 998", line);
}

std::string Joined(const std::string& one, const std::string& other) {
    return one.empty() || other.empty() ? one + other : one + "; " + other;
}

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
    const std::string warning = Joined(carried.Warning(), WarningFor(doc));
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
