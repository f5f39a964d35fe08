#include <climits>
#include <filesystem>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/letter/Attachment.h>
#include <hostkit/letter/AttachmentCopies.h>
#include <hostkit/letter/AttachmentWatch.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/letter/SaveLetter.h>

#include <mailengine/mailengine.h>

namespace hostkit {

namespace {

// The writer sends a file of this extension as it is, as an attached mail; the reader then asks whether it is one.
bool IsUnreadableMail(const CString& path, const std::string& native) {
    if (CFileUtility::GetFileExt(path) != "eml") return false;
    try {
        CString subject;
        return CEMailPerser().GetSubject(CString(ReadWhole(native, INT_MAX)), subject) == 0;
    } catch (const Failure&) {
        return true;  // too large, or gone meanwhile
    }
}

// By reading: some files of the system tell the size 0 and hold something.
bool IsEmpty(const std::string& native) {
    try {
        return ReadWhole(native, 0).empty();
    } catch (const Failure&) {
        return false;
    }
}

// What keeps the reader from the written mail, empty if nothing does.
std::string ReasonNotReadable(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    for (const CMailDoc::FileInfo& file : files) {
        const std::string native = platform::ToNativePath(file.Path);
        if (IsUnreadableMail(file.Path, native)) {
            return native + " cannot be read as a mail itself (MIME-Version 1.0 and CRLF line ends are needed)";
        }
    }
    if (files.empty()) return "";
    const std::string last = platform::ToNativePath(files.back().Path);
    return IsEmpty(last) ? last + " is empty and the last attachment" : "";
}

// The writer's text asks whether an attachment was moved. The system says more of a file that it does not give.
[[noreturn]] void ThrowReason(const CMailDoc& doc, const CString& error) {
    CheckAttachments(doc);
    throw Failure(FailureKind::Input, {}, OneLine(error));
}

// The new file goes with its target, so nothing stays of a message that was cancelled.
Outcome Save(CMailDoc& doc, OutputTarget& target, const Progress& progress) {
    CheckAreNotTarget(doc, target);
    CheckAttachedMails(doc);
    const std::string reason = ReasonNotReadable(doc);
    const AttachmentCopies copies(doc, Copied::Unsized);
    const AttachmentWatch watch(doc);
    WatchedStream stream(target.Open(), watch);
    ProgressOperation operation("保存中", doc.GetMailSize(), progress);
    CString error;
    const int written = CEMailWriter(&stream, doc, operation.Engine()).Write(error);
    if (written) operation.Complete();
    if (!written && operation.IsCancelled())
        return {Outcome::State::Cancelled, "cancelled; the mail was not written", target.Name()};
    target.CheckWritten();
    watch.Check();
    if (!written) ThrowReason(doc, error);
    Outcome done{Outcome::State::Done, reason.empty() ? "" : "mailengine cannot read this mail again: " + reason,
                 target.Name()};
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
