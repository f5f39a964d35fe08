#include "ReplyCommand.h"

#include <mailengine/mailengine.h>

#include "Diagnosis.h"
#include "Failure.h"
#include "MailOutput.h"
#include "MessageFile.h"
#include "PreparedReply.h"
#include "Terminal.h"

namespace {

void Prepare(const std::string& path, CMailDoc& doc) {
    const CString mail = ReadMessage(path);
    if (CEMailPerser().Perse(mail, nullptr, doc, 1)) return;
    const CWorkFolder folder;
    throw CFailure(NameOfMessage(path) + ": " + CDiagnosis().FaultOf(mail, folder.LibraryPath(), nullptr));
}

}  // namespace

void AnswerMail(const std::string& file, const CLetterOptions& letter, CMailDoc& doc) {
    if (file == "-" && letter.ReadsStandardInput()) {
        throw CFailure("FILE and --body-file are both standard input; name one of them as a file", kExitUsage);
    }
    Prepare(file, doc);
    const CString quoted = QuotedMail(doc);
    CleanPreparedReply(doc);
    doc.SetBody("");
    letter.Fill(doc);
    CString answer;
    doc.GetBody(answer);
    SetReplyBody(doc, answer, quoted);
}

CReplyCommand::CReplyCommand(CLI::App& program) : CCommand(program, "reply", "Write a mail that answers another") {
    m_pCommand->add_option("FILE", m_strFile, "The message to answer; - is standard input")->required();
    m_letter.AddTo(*m_pCommand);
    m_pCommand->add_option("-o,--output", m_strOutput, "The message file; - is standard output")
        ->type_name("FILE")
        ->required();
    m_pCommand->footer(
        "The old mail gives To (who wrote it), Cc (its other recipients), the subject with \"Re: \", and the thread.\n"
        "--to and --cc add to these, --subject replaces. The body is the old mail, quoted, and below it --body; with\n"
        "--upper-reply it is --body, closing and signature, and the old mail below a line that says so. What a\n"
        "Japanese mail cannot carry of the old mail becomes 〓.\n"
        "Exit status: 0 written, 1 failed, 2 the command line is wrong.");
}

int CReplyCommand::Run() const {
    CMailDoc doc;
    AnswerMail(m_strFile, m_letter, doc);
    if (doc.GetToAddressSize() == 0) terminal::Complain("warning: the answered mail names no sender; give --to");

    COutputTarget target(m_strOutput);
    CheckFiles(target);
    WriteMail(doc, target);
    return 0;
}

void CReplyCommand::CheckFiles(const COutputTarget& target) const {
    m_letter.CheckTarget(target);
    struct stat status;
    if (m_strFile != "-" && stat(m_strFile.c_str(), &status) == 0) target.CheckIsNot(status, m_strFile);
}
