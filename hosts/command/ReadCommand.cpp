#include "ReadCommand.h"

#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Utf8.h>

#include "Faults.h"
#include "Options.h"
#include "ShownMail.h"
#include "Terminal.h"

CReadCommand::CReadCommand(CLI::App& program) : CCommand(program, "read", "Show messages and extract attachments") {
    options::AddFiles(*m_pCommand, m_strFiles,
                      "Messages, mboxes, Maildirs (new, then cur), folders; none or - is standard input");
    options::AddStrict(*m_pCommand, m_bStrict);
    options::Filled(
        m_pCommand->add_option("--extract", m_strFolder, "Put the attachments into this folder; made if it is missing"))
        ->type_name("DIR");
    m_pCommand->add_flag("--json", m_bJson, "One JSON object a line for each message");
    m_pCommand->add_flag("--headers", m_bHeaders, "Show the header block as it stands");
    m_pCommand->footer(
        "Mail of any charset and form is read; what is not as it came is told in warnings. Control characters are\n"
        "spelled (\\x1B). No file in DIR is replaced. Many messages are shown as each is read.\n"
        "Exit status: 0, or 1 if any message could not be read; what could be read is still shown; 65 if one is no "
        "message at all.");
}

int CReadCommand::Run() const {
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
    if (!opened.isMessage) throw CFailure(message.name + ": " + opened.fault, kExitData);
    if (!opened.fault.empty())
        throw hostkit::Failure(hostkit::FailureKind::Message, {hostkit::Field::None, message.name}, opened.fault);
}
