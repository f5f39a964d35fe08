#include "WriteCommand.h"

#include <hostkit/letter/Envelope.h>

#include "CommandLine.h"

CWriteCommand::CWriteCommand(CLI::App& program) : CCommand(program, "write", "Write a mail to a message file") {
    m_letter.AddTo(*m_pCommand);
    m_output.AddTo(*m_pCommand);
    m_pCommand->footer("Texts are UTF-8. An existing FILE is replaced only by a whole message.");
}

int CWriteCommand::Run() const {
    CMailDoc doc;
    m_letter.Letter().Fill(doc);
    hostkit::CheckSize(doc, m_letter.Limit());
    m_output.Save(doc, *m_output.Target());
    return 0;
}
