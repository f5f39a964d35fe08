#include "SubjectCommand.h"

#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/letter/OpenedMail.h>

#include "Options.h"
#include "Terminal.h"

CSubjectCommand::CSubjectCommand(CLI::App& program) : CCommand(program, "subject", "Show the subjects of messages") {
    options::AddFiles(*m_pCommand, m_strFiles, "Messages, mboxes, Maildirs, folders; none or - is standard input");
    options::AddStrict(*m_pCommand, m_bStrict);
    m_pCommand->footer(
        "One line each: of one message the subject, of many FILE (and the number in an mbox), a TAB and the subject.");
}

int CSubjectCommand::Run() const {
    return ForEachMessage(OrStandardInput(m_strFiles), [this](CFoundMessage found) { ShowSubject(std::move(found)); });
}

void CSubjectCommand::ShowSubject(CFoundMessage found) const {
    const hostkit::OpenedSubject opened = hostkit::OpenSubject(std::move(found.message.bytes), m_bStrict);
    const bool hasLabel = m_strFiles.size() > 1 || found.isOneOfMany;
    const bool isInput = found.message.file == "-";
    const std::string& label = isInput ? found.message.file.native() : found.message.name;
    terminal::Put((hasLabel ? hostkit::Shown(label) + '\t' : "") + hostkit::Shown(opened.subject) + '\n');
    if (opened.fault.empty()) return;
    throw hostkit::Failure(hostkit::FailureKind::Message, {hostkit::Field::None, found.message.name}, opened.fault);
}
