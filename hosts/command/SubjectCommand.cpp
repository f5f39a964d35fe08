#include "SubjectCommand.h"

#include <hostkit/characters/Failure.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/letter/Diagnosis.h>

#include <mailengine/mailengine.h>

#include "CommandLine.h"
#include "Messages.h"
#include "Options.h"
#include "Terminal.h"

CSubjectCommand::CSubjectCommand(CLI::App& program) : CCommand(program, "subject", "Show the subjects of messages") {
    options::AddFiles(*m_pCommand, m_strFiles, "The messages; - is standard input")->required();
    m_pCommand->footer(
        "One line each: of one FILE the subject, of many FILE, a TAB and the subject.\n"
        "Exit status: 0, or 1 if any message could not be read; the others are still shown.");
}

int CSubjectCommand::Run() const {
    return ForEachMessage(m_strFiles, [this](const std::string& path) { ShowSubject(path); });
}

void CSubjectCommand::ShowSubject(const std::string& path) const {
    const CString mail = MessageAt(path);
    CString subject;
    const bool isRead = CEMailPerser().GetSubject(mail, subject) != 0;
    CMailDoc rest;
    MailFault fault;
    if (!isRead) {  // the header may hold one all the same
        CEMailPerser().Perse(mail, nullptr, rest, 1, fault);
        rest.GetSubject(subject);
    }
    const std::string label = m_strFiles.size() == 1 ? "" : hostkit::Shown(path) + '\t';
    terminal::Put(label + hostkit::LineShown(subject.View()) + '\n');
    if (isRead) return;
    throw hostkit::Failure(hostkit::FailureKind::Message, {hostkit::Field::None, NameOfInput(path)},
                           hostkit::FaultText(fault));
}
