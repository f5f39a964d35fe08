// CReplyCommand: mailengine reply, a mail that answers another.
#pragma once

#include "Command.h"
#include "LetterOptions.h"

// Makes doc the answer to the mail in file (- is standard input), filled by what letter was given. Throws CFailure,
// also where both are standard input.
void AnswerMail(const std::string& file, const CLetterOptions& letter, CMailDoc& doc);

class CReplyCommand : public CCommand {
public:
    explicit CReplyCommand(CLI::App& program);
    int Run() const override;

private:
    void CheckFiles(const COutputTarget& target) const;

    CLetterOptions m_letter;
    std::string m_strFile;
    std::string m_strOutput;
};
