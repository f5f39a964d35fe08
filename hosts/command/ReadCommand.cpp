#include "ReadCommand.h"

#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Utf8.h>

#include "CommandLine.h"
#include "Messages.h"
#include "Options.h"
#include "ShownMail.h"
#include "Terminal.h"

CReadCommand::CReadCommand(CLI::App& program) : CCommand(program, "read", "Show messages and extract attachments") {
    options::AddFiles(*m_pCommand, m_strFiles, "The messages, one in each; none or - is standard input");
    options::Filled(
        m_pCommand->add_option("--extract", m_strFolder, "Put the attachments into this folder; made if it is missing"))
        ->type_name("DIR");
    m_pCommand->add_flag("--json", m_bJson, "One JSON object a line for each message");
    m_pCommand->add_flag("--headers", m_bHeaders, "Show the header block as it stands");
    m_pCommand->footer(
        "Control characters are spelled (\\x1B). Lines may end in CRLF or LF. No file in DIR is replaced; of a\n"
        "message that cannot be read to its end none comes there.\n"
        "Exit status: 0, or 1 if any message could not be read; what could be read is still shown.");
}

int CReadCommand::Run() const {
    return ForEachMessage(m_strFiles.empty() ? std::vector<std::string>{"-"} : m_strFiles,
                          [this](const std::string& path) { Read(path); });
}

void CReadCommand::Read(const std::string& path) const {
    const hostkit::OpenedMail opened = hostkit::OpenMail(MessageAt(path), m_strFolder.value_or(""));
    if (m_bJson) {
        terminal::Put(JsonOfMail(opened, m_bHeaders, path));
    } else {
        if (m_strFiles.size() > 1) terminal::Put("==> " + hostkit::Shown(path) + " <==\n");
        terminal::Put(ShownMail(opened, m_bHeaders) + (m_strFiles.size() > 1 ? "\n" : ""));
    }
    if (!opened.fault.empty())
        throw hostkit::Failure(hostkit::FailureKind::Message, {hostkit::Field::None, NameOfInput(path)}, opened.fault);
}
