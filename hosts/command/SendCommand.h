// CSendCommand: mailengine send, a mail from options to a mail server or to this machine's mail system.
#pragma once

#include <hostkit/letter/FinishedMail.h>
#include <optional>

#include "AnswerOptions.h"
#include "Command.h"
#include "LetterOptions.h"
#include "WayOut.h"

class CSendCommand : public CCommand {
public:
    explicit CSendCommand(CLI::App& program);
    // Sends the mail, whole or not at all. Throws CFailure and hostkit::Failure.
    int Run() const override;

private:
    // Fills doc, or its envelope alone, for a finished message, which it gives.
    std::optional<hostkit::FinishedMail> Prepare(CMailDoc& doc) const;

    CLetterOptions m_letter;
    CAnswerOptions m_answer;
    CWayOut m_way;
    std::string m_strFile;
    std::string m_strAnswered;
    bool m_bDryRun = false;
    bool m_bQuiet = false;
};
