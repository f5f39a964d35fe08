#include "ReadCommand.h"

#include <algorithm>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/OpenedMail.h>
#include <unistd.h>

#include "Faults.h"
#include "Options.h"
#include "ShownMail.h"
#include "Terminal.h"

namespace {

// Text of which a terminal obeys nothing but its line ends and TABs.
bool IsForTerminal(const std::string& bytes) {
    if (!hostkit::IsUtf8(bytes)) return false;
    const std::string shown = hostkit::BodyShown(bytes);
    std::string plain = bytes;
    plain.erase(std::remove(plain.begin(), plain.end(), '\r'), plain.end());
    return shown == plain || shown == plain + '\n';
}

}  // namespace

CReadCommand::CReadCommand(CLI::App& program) : CCommand(program, "read", "Show messages and extract attachments") {
    options::AddFiles(*m_pCommand, m_strFiles,
                      "Messages, mboxes, Maildirs (new, then cur), folders; none or - is standard input");
    options::AddStrict(*m_pCommand, m_bStrict);
    options::Filled(
        m_pCommand->add_option("--extract", m_strFolder, "Put the attachments into this folder; made if it is missing"))
        ->type_name("DIR");
    m_pCommand->add_flag("--json", m_bJson, "One JSON object a line for each message");
    m_pCommand->add_flag("--headers", m_bHeaders, "Show the header block as it stands");
    CLI::Option* const show =
        m_pCommand->add_option("--show", m_nShown, "Put attachment N of the list to standard output, byte for byte")
            ->type_name("N")
            ->check(options::FaultOfCount, "");
    for (const char* const other : {"--extract", "--json", "--headers"})
        show->excludes(m_pCommand->get_option(other));
    m_pCommand->add_option("--message", m_nMessage, "Which of many messages --show means, counted from 1")
        ->type_name("N")
        ->check(options::FaultOfCount, "")
        ->needs(show);
    m_pCommand->footer(
        "Mail of any charset and form is read; what is not as it came is told in warnings. Control characters are\n"
        "spelled (\\x1B). No file in DIR is replaced. Many messages are shown as each is read; what could be read of\n"
        "one with a fault is still shown.");
}

int CReadCommand::Run() const {
    if (m_nShown) {
        Show();
        return 0;
    }
    return ForEachMessage(OrStandardInput(m_strFiles), [this](CFoundMessage found) { Read(std::move(found)); });
}

void CReadCommand::Read(CFoundMessage found) const {
    hostkit::MessageSource::Message& message = found.message;
    const hostkit::OpenedMail opened =
        hostkit::OpenMail(std::move(message.bytes), {.folder = m_strFolder.value_or(""), .strict = m_bStrict});
    const bool isOneOfMany = m_strFiles.size() > 1 || found.isOneOfMany;
    if (m_bJson) {
        terminal::Put(JsonOfMail(opened, m_bHeaders, message));
    } else if (opened.isMessage) {
        const std::string& name = message.file == "-" ? message.file.native() : message.name;
        if (isOneOfMany) terminal::Put("==> " + hostkit::Shown(name) + " <==\n");
        terminal::Put(ShownMail(opened, m_bHeaders) + (isOneOfMany ? "\n" : ""));
    }
    for (const std::string& warning : opened.warnings)
        terminal::Warn(message.name + ": " + warning);
    if (!opened.isMessage) throw CFailure(message.name + ": " + opened.fault);
    if (!opened.fault.empty())
        throw hostkit::Failure(hostkit::FailureKind::Message, {hostkit::Field::None, message.name}, opened.fault);
}

void CReadCommand::Show() const {
    if (m_strFiles.size() > 1) throw CFailure(hostkit::Words("--show: give one FILE"), kExitUsage);
    hostkit::MessageSource::Message message = TheMessage(OrStandardInput(m_strFiles).front(), m_nMessage);
    const hostkit::WorkFolder folder;
    const hostkit::OpenedMail opened =
        hostkit::OpenMail(std::move(message.bytes), {.folder = folder.Path(), .strict = m_bStrict});
    if (!opened.fault.empty()) throw CFailure(message.name + ": " + opened.fault);
    for (const std::string& warning : opened.warnings)
        terminal::Warn(message.name + ": " + warning);
    if (*m_nShown > opened.files.size())
        throw CFailure(hostkit::CountedWords(opened.files.size(), "{2}: has {1} attachment; --show {3} is not there",
                                             "{2}: has {1} attachments; --show {3} is not there", message.name,
                                             *m_nShown));
    const std::string bytes = hostkit::ReadMessage(opened.files[*m_nShown - 1].path);
    if (isatty(STDOUT_FILENO) != 0 && !IsForTerminal(bytes))
        throw CFailure(hostkit::Words("--show: attachment {1} is no plain text, which a terminal must not get; send it "
                                      "into a file",
                                      *m_nShown),
                       kExitUsage);
    terminal::Put(bytes);
    terminal::Finish();
}
