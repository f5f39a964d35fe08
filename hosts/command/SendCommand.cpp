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

void Send(CMailDoc& doc, bool quiet) {
    {
        CTerminalProgress progress("送信中", quiet);
        CheckDone(hostkit::SendLetter(doc, [&](int percent) { return progress.Show(percent); }));
    }
    if (!quiet) std::cerr << "送信しました。\n" << std::flush;
}

}  // namespace

CSendCommand::CSendCommand(CLI::App& program) : CCommand(program, "send", "Send a mail to a mail server") {
    m_letter.AddTo(*m_pCommand);
    options::Filled(m_pCommand->add_option("--server", m_strServer, "The mail server; its port is 25 unless given"))
        ->type_name("HOST[:PORT]");
    CLI::Option* answered = options::Filled(
        m_pCommand->add_option("--answer", m_strAnswered, "A mail to answer, as reply does; - is standard input"));
    m_answer.AddTo(*m_pCommand, *answered->type_name("FILE"));
    m_pCommand->add_flag("--dry-run", m_bDryRun, "Print sender, recipients and size; connect to nothing");
    m_pCommand->add_flag("--quiet", m_bQuiet, "Show no progress");
    m_pCommand->footer(
        "Texts are UTF-8. The recipients are those of --to, --cc and --bcc, the sender with --sender-bcc, and those\n"
        "of an answer, each once; they get the whole mail or nothing. Nobody can read who the blind copies go to.\n"
        "Ctrl-C cancels, a second one ends the program at once.\n"
        "Exit status: 0 the server took the mail, 1 failed, 2 the command line is wrong, 76 the whole mail went out "
        "but\n"
        "no verdict came (a second try may double it), 130 cancelled.");
}

int CSendCommand::Run() const {
    CMailDoc doc;
    const std::optional<std::string>& server = m_strServer ? m_strServer : m_letter.Settings().server;
    if (!server) throw CFailure("--server is required, here or in the settings", kExitUsage);
    hostkit::SetServer(*server, doc);
    if (m_strAnswered.empty())
        m_letter.Letter().Fill(doc);
    else
        m_answer.Answer(m_strAnswered, m_letter, doc);
    hostkit::CheckEnvelope(doc);
    if (m_bDryRun)
        PrintEnvelope(doc);
    else
        Send(doc, m_bQuiet);
    return 0;
}
