// CWriteCommand: mailengine write, a mail from options to a message file.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "LetterOptions.h"

class CWriteCommand {
public:
    // Adds the command to the program; this object must outlive the parse.
    explicit CWriteCommand(CLI::App& program);
    CWriteCommand(const CWriteCommand&) = delete;
    CWriteCommand& operator=(const CWriteCommand&) = delete;

    // Whether the command line asked for this command.
    bool IsAsked() const { return m_pCommand->parsed(); }
    // Writes the message. Throws CFailure; a file is then as it was before.
    void Run() const;

private:
    CLI::App* m_pCommand;  // the program's
    CLetterOptions m_letter;
    std::string m_strOutput;
};
