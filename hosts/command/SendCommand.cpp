#include "SendCommand.h"

#include <hostkit/characters/Utf8.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/SendLetter.h>
#include <iostream>

#include "Faults.h"
#include "Options.h"
#include "Terminal.h"
#include "TerminalProgress.h"

namespace {

void PrintEnvelope(CMailDoc& doc) {
    const std::uint64_t bytes = hostkit::MessageBytes(doc);
    terminal::Put("sender: " + hostkit::Shown(hostkit::SenderOf(doc)) + '\n');
    for (const std::string& recipient : hostkit::RecipientsOf(doc))
        terminal::Put("recipient: " + hostkit::Shown(recipient) + '\n');
    terminal::Put("size: " + std::to_string(bytes) + " bytes\n");
    terminal::Finish();
}

void Send(CMailDoc& doc, const std::optional<hostkit::MailProgram>& program, bool quiet) {
    {
        CTerminalProgress progress("送信中", quiet);
        const auto show = [&](int percent) { return progress.Show(percent); };
        CheckDone(program ? hostkit::SendLetter(doc, *program, show) : hostkit::SendLetter(doc, show));
    }
    if (!quiet) std::cerr << "送信しました。\n" << std::flush;
}

}  // namespace

CSendCommand::CSendCommand(CLI::App& program) : CCommand(program, "send", "Send a mail") {
    m_letter.AddTo(*m_pCommand);
    m_way.AddTo(*m_pCommand);
    CLI::Option* answered = options::Filled(
        m_pCommand->add_option("--answer", m_strAnswered, "A mail to answer, as reply does; - is standard input"));
    m_answer.AddTo(*m_pCommand, *answered->type_name("FILE"));
    m_pCommand->add_flag("--dry-run", m_bDryRun, "Print sender, recipients and size; connect to nothing");
    m_pCommand->add_flag("--quiet", m_bQuiet, "Show no progress");
    m_pCommand->footer(
        "Texts are UTF-8. The recipients are those of --to, --cc and --bcc, the sender with --sender-bcc, and those\n"
        "of an answer, each once; they get the whole mail or nothing. Nobody can read who the blind copies go to.\n"
        "Ctrl-C cancels, a second one ends the program at once.\n"
        "Exit status: 0 the server or the mail system took the mail, 1 failed, 2 the command line is wrong, 76 the "
        "whole mail went out "
        "but\n"
        "no verdict came (a second try may double it), 130 cancelled.");
}

int CSendCommand::Run() const {
    CMailDoc doc;
    const std::optional<hostkit::MailProgram> program = m_way.ProgramFor(m_letter.Settings(), doc);
    if (m_strAnswered.empty())
        m_letter.Letter().Fill(doc);
    else
        m_answer.Answer(m_strAnswered, m_letter, doc);
    hostkit::CheckEnvelope(doc);
    if (m_bDryRun)
        PrintEnvelope(doc);
    else
        Send(doc, program, m_bQuiet);
    return 0;
}
