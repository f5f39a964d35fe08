// CWriteCommand: mailengine write, a mail from options to a message file.
#pragma once

#include "Command.h"
#include "LetterOptions.h"

class CWriteCommand : public CCommand {
public:
    explicit CWriteCommand(CLI::App& program);
    int Run() const override;

private:
    CLetterOptions m_letter;
    std::string m_strOutput;
};
