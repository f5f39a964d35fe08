// CWriteCommand: mailengine write, a mail from options to a message file.
#pragma once

#include "Command.h"
#include "LetterOptions.h"
#include "OutputOptions.h"

class CWriteCommand : public CCommand {
public:
    explicit CWriteCommand(CLI::App& program);
    int Run() const override;

private:
    CLetterOptions m_letter;
    COutputOptions m_output;
};
