#include "SendCommand.h"

#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/SendLetter.h>
#include <hostkit/letter/SentCopy.h>
#include <iostream>

#include "Faults.h"
#include "Options.h"
#include "Terminal.h"
#include "TerminalProgress.h"

using hostkit::CountedWords;
using hostkit::Words;

namespace {

using Finished = std::optional<hostkit::FinishedMail>;

void PrintEnvelope(CMailDoc& doc, const Finished& finished) {
    const std::uint64_t bytes = finished ? finished->message.size() : hostkit::MessageBytes(doc);
    terminal::Put(Words("sender: {1}", hostkit::Shown(hostkit::SenderOf(doc))) + '\n');
    for (const std::string& recipient : hostkit::RecipientsOf(doc))
        terminal::Put(Words("recipient: {1}", hostkit::Shown(recipient)) + '\n');
    terminal::Put(CountedWords(bytes, "size: {1} byte", "size: {1} bytes") + '\n');
    terminal::Finish();
}

using Program = std::optional<hostkit::MailProgram>;
using Maildir = std::optional<std::filesystem::path>;

hostkit::Outcome SentBy(const Program& program, CMailDoc& doc, const Finished& finished,
                        const hostkit::Progress& progress) {
    if (finished && program) return hostkit::SendLetter(*finished, doc, *program, progress);
    if (finished) return hostkit::SendLetter(*finished, doc, progress);
    return program ? hostkit::SendLetter(doc, *program, progress) : hostkit::SendLetter(doc, progress);
}

void Send(CMailDoc& doc, const Finished& finished, const Program& program, const Maildir& maildir, bool quiet) {
    {
        std::optional<hostkit::SentCopy> copy;
        if (maildir) copy.emplace(*maildir);
        CTerminalProgress progress(Words("Sending"),
                                   quiet ? CTerminalProgress::Shown::No : CTerminalProgress::Shown::Yes);
        if (copy && finished) copy->Write(finished->message);
        if (copy && !finished) copy->Write(doc);
        const hostkit::Outcome sent =
            SentBy(program, doc, finished, [&](int percent) { return progress.Show(percent); });
        if (const std::string warning = copy ? copy->Keep(sent) : ""; !warning.empty()) terminal::Warn(warning);
        CheckDone(sent);
    }
    if (!quiet) std::cerr << Words("The mail was sent.") + '\n' << std::flush;
}

}  // namespace

CSendCommand::CSendCommand(CLI::App& program) : CCommand(program, "send", "Send a mail") {
    CLI::Option* file = options::AddFile(
        *m_pCommand, m_strFile, "A finished message, sent as it stands without its Bcc field; - is standard input");
    m_letter.AddTo(*m_pCommand);
    m_way.AddTo(*m_pCommand);
    CLI::Option* answered = options::Filled(
        m_pCommand->add_option("--answer", m_strAnswered, "A mail to answer, as reply does; - is standard input"));
    answered->type_name("FILE")->excludes(file);
    m_answer.AddTo(*m_pCommand, *answered);
    m_pCommand->get_option("--message")->remove_needs(answered);  // FILE can be of many messages too
    m_pCommand->add_flag("--dry-run", m_bDryRun, "Print sender, recipients and size; connect to nothing");
    m_pCommand->add_flag("--quiet", m_bQuiet, "Show no progress");
    m_pCommand->footer(
        "Texts are UTF-8. The recipients are those of --to, --cc and --bcc, the sender with --sender-bcc, and those\n"
        "of an answer, each once; they get the whole mail or nothing. Nobody can read who the blind copies go to.\n"
        "A finished message goes to those of --to, else of its To, Cc and Bcc; its sender is --from, else its From.\n"
        "Ctrl-C cancels, a second one ends the program at once.");
}

int CSendCommand::Run() const {
    CMailDoc doc;
    const std::optional<hostkit::MailProgram> program = m_way.ProgramFor(m_letter.Settings(), doc);
    const Finished finished = Prepare(doc);
    hostkit::CheckEnvelope(doc);
    if (finished && !program) hostkit::CheckSendable(*finished);
    if (finished)
        hostkit::CheckSize(finished->message.size(), m_letter.Limit());
    else
        hostkit::CheckSize(doc, m_letter.Limit());
    if (m_bDryRun)
        PrintEnvelope(doc, finished);
    else
        Send(doc, finished, program, m_way.CopyFor(m_letter.Settings()), m_bQuiet);
    return 0;
}

Finished CSendCommand::Prepare(CMailDoc& doc) const {
    if (m_answer.HasNumber() && m_strAnswered.empty() && m_strFile.empty())
        throw CFailure(hostkit::Words("--message needs FILE or --answer beside it; see mailengine send --help"),
                       kExitUsage);
    if (!m_strFile.empty()) {
        m_letter.CheckForFinished();
        hostkit::MessageSource::Message message = m_answer.Message(m_strFile);
        return hostkit::TakeFinishedMail(std::move(message.bytes), message.name, m_letter.From(), m_letter.To(), doc);
    }
    if (m_strAnswered.empty())
        m_letter.Letter().Fill(doc);
    else
        m_answer.Answer(m_strAnswered, m_letter, doc);
    return {};
}
