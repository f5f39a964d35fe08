// CCommand: one command of the program, as main lists them.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

class CCommand {
public:
    CCommand(const CCommand&) = delete;
    CCommand& operator=(const CCommand&) = delete;
    virtual ~CCommand() = default;

    // Whether the command line asked for this command.
    bool IsAsked() const { return m_pCommand->parsed(); }
    std::string Name() const { return m_pCommand->get_name(); }
    // Does the work and gives the exit status: 0, or that of the last fault, where each has its line on stderr already.
    // Throws CFailure and hostkit::Failure for a fault that ends the command.
    virtual int Run() const = 0;

protected:
    // Adds the command to the program; this object must outlive the parse.
    CCommand(CLI::App& program, const std::string& name, const std::string& help)
        : m_pCommand(program.add_subcommand(name, help)) {}

    CLI::App* m_pCommand;  // the program's
};
