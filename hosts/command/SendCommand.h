// CSendCommand: mailengine send, a mail from options to a mail server.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "LetterOptions.h"

class CSendCommand {
public:
    // Adds the command to the program; this object must outlive the parse.
    explicit CSendCommand(CLI::App& program);
    CSendCommand(const CSendCommand&) = delete;
    CSendCommand& operator=(const CSendCommand&) = delete;

    // Whether the command line asked for this command.
    bool IsAsked() const { return m_pCommand->parsed(); }
    // Sends the mail, whole or not at all. Throws CFailure.
    void Run() const;

private:
    void SetServer(CMailDoc& doc) const;

    CLI::App* m_pCommand;  // the program's
    CLetterOptions m_letter;
    std::string m_strServer;
    bool m_bDryRun = false;
    bool m_bQuiet = false;
};
