// mailengine: the mail engine from the command line.
#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <memory>

#include "Faults.h"
#include "ReadCommand.h"
#include "ReplyCommand.h"
#include "SendCommand.h"
#include "SignalGuard.h"
#include "StandardFiles.h"
#include "SubjectCommand.h"
#include "Terminal.h"
#include "WriteCommand.h"

namespace {

int Fail(const std::string& text, int status) {
    terminal::Complain(text);
    return status;
}

int Help(const std::string& text) {
    terminal::Put(text);
    terminal::Finish();
    return 0;
}

int Run(int argc, char** argv) {
    CLI::App program("Writes, sends, reads and answers Japanese mails as Internet messages.", "mailengine");
    program.require_subcommand(0, 1);
    const std::unique_ptr<const CCommand> commands[] = {
        std::make_unique<CWriteCommand>(program), std::make_unique<CReplyCommand>(program),
        std::make_unique<CReadCommand>(program),  std::make_unique<CSubjectCommand>(program),
        std::make_unique<CSendCommand>(program),
    };
    const auto asked = [&]() -> const CCommand* {
        for (const auto& command : commands) {
            if (command->IsAsked()) return command.get();
        }
        return nullptr;
    };
    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Help(program.help());
    } catch (const CLI::ParseError& error) {
        const std::string level = asked() != nullptr ? "mailengine " + asked()->Name() : "mailengine";
        return Fail(std::string(error.what()) + "; see " + level + " --help", kExitUsage);
    }
    if (asked() == nullptr) return Fail("a command is missing; see mailengine --help", kExitUsage);
    return asked()->Run();
}

}  // namespace

int main(int argc, char** argv) {
    if (!OpenMissingStandardFiles()) return kExitFailed;
    // The user's language, and the characters for what libc says in it; numbers and dates stay those of protocols.
    std::setlocale(LC_CTYPE, "");
    std::setlocale(LC_MESSAGES, "");
    // A closed pipe and a file that grows too large are failed writes, with their line on stderr.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    InstallSignalGuard();
    try {
        return Run(argc, argv);
    } catch (...) {
        return ReportFault();
    }
}
