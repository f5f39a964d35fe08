#include "WriteCommand.h"

#include <mailengine/mailengine.h>

#include "Failure.h"
#include "OneLine.h"
#include "OutputTarget.h"

CWriteCommand::CWriteCommand(CLI::App& program)
    : m_pCommand(program.add_subcommand("write", "Write a mail to a message file")) {
    m_letter.AddTo(*m_pCommand);
    m_pCommand->add_option("-o,--output", m_strOutput, "The message file; - is standard output")
        ->type_name("FILE")
        ->required();
    m_pCommand->footer(
        "Texts are UTF-8. An existing FILE is replaced only by a whole message.\n"
        "Exit status: 0 written, 1 failed, 2 the command line is wrong.");
}

void CWriteCommand::Run() const {
    CMailDoc doc;
    m_letter.Fill(doc);
    COutputTarget target(m_strOutput);
    m_letter.CheckTarget(target);

    COutputStream& stream = target.Open();
    CProgressCallback progress("", 0, nullptr);
    CString error;
    const int written = CEMailWriter(&stream, doc, progress).Write(error);
    target.CheckWritten();
    if (!written) throw CFailure(OneLine(error));
    target.Commit();
}
