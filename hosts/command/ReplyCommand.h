// CReplyCommand: mailengine reply, a mail that answers another.
#pragma once

#include "Command.h"
#include "LetterOptions.h"
#include "OutputOptions.h"

// Makes doc the answer to the mail in file (- is standard input), filled by what the options give. Warns on stderr of
// what was left out. Throws CFailure where both are standard input, and hostkit::Failure.
void AnswerMail(const std::string& file, const CLetterOptions& options, CMailDoc& doc);

class CReplyCommand : public CCommand {
public:
    explicit CReplyCommand(CLI::App& program);
    int Run() const override;

private:
    CLetterOptions m_letter;
    std::string m_strFile;
    COutputOptions m_output;
};
