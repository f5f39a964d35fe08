#include "ReplyCommand.h"

#include <hostkit/characters/Words.h>

#include "CommandLine.h"
#include "Options.h"
#include "Terminal.h"

CReplyCommand::CReplyCommand(CLI::App& program) : CCommand(program, "reply", "Write a mail that answers another") {
    CLI::Option* file = options::AddFile(*m_pCommand, m_strFile, "The message to answer; - is standard input");
    m_answer.AddTo(*m_pCommand, *file->required());
    m_letter.AddTo(*m_pCommand);
    m_output.AddTo(*m_pCommand);
    m_pCommand->footer(
        "The answer goes to the old mail's Reply-To, else to who wrote it, with --all to its other recipients too; to\n"
        "none of your own addresses (--from, --own), and to each recipient once. The answer to a mail of your own "
        "goes\n"
        "to its recipients. --to and --cc add to these. The subject is the old one with \"Re: \", or --subject.\n"
        "The body is the old mail, quoted, and below it --body; with\n"
        "--upper-reply it is --body, closing and signature, and the old mail below a line that says so. What a\n"
        "Japanese mail cannot carry of the old mail becomes 〓.");
}

int CReplyCommand::Run() const {
    CMailDoc doc;
    const std::filesystem::path answered = m_answer.Answer(m_strFile, m_letter, doc);
    if (doc.GetToAddressSize() == 0) terminal::Warn(hostkit::Words("the answered mail names no sender; give --to"));

    const std::unique_ptr<hostkit::OutputTarget> target = m_output.Target();
    struct stat status;
    if (m_strFile != "-" && stat(answered.c_str(), &status) == 0)
        target->CheckIsNot(status, {hostkit::Field::None, answered.native()});
    m_output.Save(doc, *target);
    return 0;
}
