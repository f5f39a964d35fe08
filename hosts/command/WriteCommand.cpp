#include "WriteCommand.h"

#include "MailOutput.h"

CWriteCommand::CWriteCommand(CLI::App& program) : CCommand(program, "write", "Write a mail to a message file") {
    m_letter.AddTo(*m_pCommand);
    m_pCommand->add_option("-o,--output", m_strOutput, "The message file; - is standard output")
        ->type_name("FILE")
        ->required();
    m_pCommand->footer(
        "Texts are UTF-8. An existing FILE is replaced only by a whole message.\n"
        "Exit status: 0 written, 1 failed, 2 the command line is wrong.");
}

int CWriteCommand::Run() const {
    CMailDoc doc;
    m_letter.Fill(doc);
    COutputTarget target(m_strOutput);
    m_letter.CheckTarget(target);
    WriteMail(doc, target);
    return 0;
}
