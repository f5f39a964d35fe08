// CSendCommand: mailengine send, a mail from options to a mail server.
#pragma once

#include "AnswerOptions.h"
#include "Command.h"
#include "LetterOptions.h"

class CSendCommand : public CCommand {
public:
    explicit CSendCommand(CLI::App& program);
    // Sends the mail, whole or not at all. Throws CFailure and hostkit::Failure.
    int Run() const override;

private:
    CLetterOptions m_letter;
    CAnswerOptions m_answer;
    std::optional<std::string> m_strServer;
    std::string m_strAnswered;
    bool m_bDryRun = false;
    bool m_bQuiet = false;
};
