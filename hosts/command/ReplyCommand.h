// CReplyCommand: mailengine reply, a mail that answers another.
#pragma once

#include "Command.h"
#include "LetterOptions.h"

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
