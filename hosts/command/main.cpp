// mailengine: the mail engine from the command line.
#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <hostkit/characters/Words.h>
#include <malloc.h>

#include "Commands.h"
#include "Faults.h"
#include "HelpTexts.h"
#include "SignalGuard.h"
#include "StandardFiles.h"
#include "Terminal.h"
#include "UsageFault.h"

using hostkit::Marked;
using hostkit::Words;

namespace {

constexpr int kLargeTextBytes = 1 << 20;
constexpr char kHelp[] = "mailengine --help";

int Fail(const std::string& text, int status) {
    terminal::Complain(text);
    return status;
}

int Help(const std::string& text) {
    terminal::Put(text);
    terminal::Finish();
    return 0;
}

std::string WithHelp(const std::string& fault, const std::string& help) {
    return Words("{1}; see {2}", fault, help);
}

// help, or help COMMAND. Answers where that was asked for.
class CHelp {
public:
    explicit CHelp(CLI::App& program)
        : m_program(program), m_pCommand(program.add_subcommand("help", "Tell about a command")) {
        m_pCommand->add_option("COMMAND", m_strCommand, "The command; none tells about all");
    }

    bool IsAsked() const { return m_pCommand->parsed(); }
    int Run() const {
        // The program's own help() would tell about this command.
        if (m_strCommand.empty())
            return Help(
                m_program.get_formatter()->make_help(&m_program, m_program.get_name(), CLI::AppFormatMode::Normal));
        for (const CLI::App* command : m_program.get_subcommands({}))
            if (command->get_name() == m_strCommand) return Help(command->help(m_program.get_name()));
        return Fail(WithHelp(UnknownCommand(m_program, m_strCommand), kHelp), kExitUsage);
    }

private:
    CLI::App& m_program;
    CLI::App* m_pCommand;  // the program's
    std::string m_strCommand;
};

int Run(int argc, char** argv) {
    CLI::App program;
    const auto commands = AddCommands(program);
    program.set_version_flag("--version", "mailengine " MAILENGINE_VERSION, Marked("Show the version and end"));
    const CHelp help(program);
    TranslateHelp(program);
    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Help(program.help());
    } catch (const CLI::CallForVersion& version) {
        return Help(std::string(version.what()) + '\n');
    } catch (const CLI::ParseError&) {
        const std::vector<CLI::App*> asked = program.get_subcommands();
        const std::string fault = UsageFault(asked.empty() ? program : *asked[0], {argv, argv + argc});
        return Fail(WithHelp(fault, asked.empty() ? kHelp : "mailengine " + asked[0]->get_name() + " --help"),
                    kExitUsage);
    }
    if (help.IsAsked()) return help.Run();
    for (const auto& command : commands)
        if (command->IsAsked()) return command->Run();
    return Fail(WithHelp(Words("a command is missing"), kHelp), kExitUsage);
}

}  // namespace

int main(int argc, char** argv) {
    // Left alone, libc learns from the first large text that it frees to keep the next ones.
    mallopt(M_MMAP_THRESHOLD, kLargeTextBytes);
    if (!OpenMissingStandardFiles()) return EX_OSERR;
    // The user's language, and the characters for what libc says in it; numbers and dates stay those of protocols.
    std::setlocale(LC_CTYPE, "");
    std::setlocale(LC_MESSAGES, "");
    // A closed pipe and a file that grows too large are failed writes, with their line on stderr.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);  // where it is ignored, nobody learns how a program ended
    InstallSignalGuard();
    try {
        return Run(argc, argv);
    } catch (...) {
        return ReportFault();
    }
}
