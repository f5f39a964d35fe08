#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/DescriptorStream.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/letter/BlindCopies.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/ProgramDelivery.h>
#include <hostkit/letter/SendLetter.h>
#include <hostkit/outbox/LocalLines.h>
#include <iterator>
#include <sysexits.h>

#include <mailengine/writer/EMailWriter.h>

namespace hostkit {

namespace {

struct Meaning {
    int status;
    FailureKind kind;
    const char* words;
};
// What sendmail, and all that stand in for it, mean by their exit status.
constexpr Meaning kMeanings[] = {
    {EX_USAGE, FailureKind::Delivery, Marked("it does not know these options")},
    {EX_DATAERR, FailureKind::Delivery, Marked("it does not take this mail as it is")},
    {EX_NOUSER, FailureKind::Delivery, Marked("a recipient does not exist")},
    {EX_NOHOST, FailureKind::NoHost, Marked("a host does not exist")},
    {EX_UNAVAILABLE, FailureKind::Delivery, Marked("the mail system does not work")},
    {EX_OSERR, FailureKind::Later, Marked("this machine lacks something; try again later")},
    {EX_CANTCREAT, FailureKind::Delivery, Marked("a file could not be made")},
    {EX_IOERR, FailureKind::Later, Marked("reading or writing failed; try again later")},
    {EX_TEMPFAIL, FailureKind::Later, Marked("try again later")},
    {EX_PROTOCOL, FailureKind::Delivery, Marked("the server did not follow its protocol")},
    {EX_NOPERM, FailureKind::Rights, Marked("this is not allowed")},
    {EX_CONFIG, FailureKind::Delivery, Marked("the mail system is not set up for this")},
};

Outcome NotSent(const ProgramResult& result, const std::string& program) {
    const std::string said = result.words.empty() ? program : result.words;
    const Meaning* const meaning = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                                [&](const Meaning& row) { return row.status == result.status; });
    const bool isKnown = meaning != std::end(kMeanings);
    const std::string fact =
        isKnown ? Words("the mail was not sent: {1} (status {2}: {3})", said, result.status, Words(meaning->words))
        : result.status < 0  ? Words("the mail was not sent: {1} (ended by signal {2})", said, -result.status)
        : result.status == 0 ? Words("the mail was not sent: {1} (it ended without reading the mail)", said)
                             : Words("the mail was not sent: {1} (status {2})", said, result.status);
    const Failure failure(isKnown ? meaning->kind : FailureKind::Delivery, {}, fact);
    return {Outcome::State::Failed, failure.what(), {}, failure};
}

Outcome OutcomeOf(const ProgramResult& result, const std::string& program) {
    switch (result.state) {
        case ProgramResult::State::Taken:
            return {};
        case ProgramResult::State::NotTaken:
            return NotSent(result, program);
        case ProgramResult::State::Cancelled:
            return {Outcome::State::Cancelled, Words("cancelled; the mail was not sent")};
        case ProgramResult::State::Unknown:
            break;
    }
    const Failure failure(FailureKind::Delivery, {},
                          Words("{1} may have taken the mail: it had all of it when it was ended", program));
    return {Outcome::State::Unknown, failure.what(), {}, failure};
}

[[noreturn]] void RefuseFolder(int error) {
    throw Failure(FailureKind::Output, {Field::None, TemporaryFolder().native()},
                  Words("the mail cannot be put into it on its way out: {1}", SystemWords(error)));
}

}  // namespace

LocalMessage::LocalMessage(const std::function<bool(COutputStream&)>& write) : m_file(m_folder.Path() / "mail") {
    const Descriptor file(open(m_file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file) RefuseFolder(errno);
    DescriptorStream stream(file.Number());
    LocalLines lines(stream);
    m_bWhole = write(lines);
    stream.Close();
    if (stream.Failed() != 0) RefuseFolder(stream.Failed());
}

Outcome DeliverByProgram(const MailProgram& program, const std::string& sender,
                         const std::vector<std::string>& recipients, const LocalMessage& message,
                         ProgressOperation& operation, unsigned int share) {
    const std::uint64_t bytes = std::max<std::uint64_t>(message.Bytes(), 1);
    unsigned int told = 0;
    const auto goOn = [&](std::uint64_t read) {
        const auto done = static_cast<unsigned int>(static_cast<double>(share) * static_cast<double>(read) /
                                                    static_cast<double>(bytes));
        (void)operation.Engine().Callback(std::max(done, told) - told);
        told = std::max(done, told);
        return !operation.IsCancelled();
    };
    const ProgramResult result = RunProgram(program, sender, recipients, message.Path(), goOn);
    if (result.state == ProgramResult::State::Taken) operation.Complete();
    return OutcomeOf(result, program.path.native());
}

namespace {

// The message goes into its file at once, so no more of the attachments is copied than has to be.
Outcome Send(CMailDoc& doc, const MailProgram& program, const Progress& progress) {
    CheckEnvelope(doc);
    CheckAttachments(doc);
    CheckProgram(program);
    const std::string sender = SenderOf(doc);
    const std::vector<std::string> recipients = RecipientsOf(doc);
    const CarriedFiles carried(doc, Copied::Needed);
    const AttachmentWatch watch = carried.Watch();
    const BlindCopies blind(doc);
    const unsigned int share = std::clamp(doc.GetMailSize(), 1u, UINT_MAX / 2);  // of writing, then of handing over
    ProgressOperation operation(Words("Sending"), 2 * share, progress);
    CString error;
    const LocalMessage message([&](COutputStream& target) {
        WatchedStream stream(target, watch);
        return CEMailWriter(&stream, doc, operation.Engine()).Write(error) != 0;
    });
    if (operation.IsCancelled()) return {Outcome::State::Cancelled, Words("cancelled; the mail was not sent")};
    watch.Check();
    if (!message.IsWhole()) {
        carried.CheckReadable();
        throw Failure(FailureKind::Input, {}, carried.InUsersNames(OneLine(error)));
    }
    Outcome outcome = DeliverByProgram(program, sender, recipients, message, operation, share);
    if (outcome) outcome.text = carried.Warning();
    return outcome;
}

}  // namespace

Outcome SendLetter(CMailDoc& doc, const MailProgram& program, const Progress& progress) {
    try {
        return Send(doc, program, progress);
    } catch (const Failure& failure) {
        return {Outcome::State::Failed, failure.what(), {}, failure};
    }
}

Outcome SendLetter(const FinishedMail& mail, CMailDoc& doc, const MailProgram& program, const Progress& progress) {
    try {
        CheckEnvelope(doc);
        CheckProgram(program);
        constexpr unsigned int kShare = 100;
        ProgressOperation operation(Words("Sending"), kShare, progress);
        const LocalMessage message(
            [&](COutputStream& target) { return target.WriteString(mail.message.c_str()) != 0; });
        return DeliverByProgram(program, SenderOf(doc), RecipientsOf(doc), message, operation, kShare);
    } catch (const Failure& failure) {
        return {Outcome::State::Failed, failure.what(), {}, failure};
    }
}

}  // namespace hostkit
