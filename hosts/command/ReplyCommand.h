// CReplyCommand: mailengine reply, a mail that answers another.
#pragma once

#include "AnswerOptions.h"
#include "Command.h"
#include "LetterOptions.h"
#include "OutputOptions.h"

class CReplyCommand : public CCommand {
public:
    explicit CReplyCommand(CLI::App& program);
    int Run() const override;

private:
    CLetterOptions m_letter;
    CAnswerOptions m_answer;
    std::string m_strFile;
    COutputOptions m_output;
};
