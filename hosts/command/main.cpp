// mailengine: the mail engine from the command line.
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>

#include "Failure.h"
#include "SendCommand.h"
#include "Utf8.h"
#include "WriteCommand.h"

namespace {

int Fail(const std::string& text, int status) {
    std::cerr << "mailengine: " << utf8::Shown(text) << '\n';
    return status;
}

// Help is an answer like any other: it counts only if it got out.
int Help(const std::string& text) {
    std::cout << text << std::flush;
    return std::cout ? 0 : Fail("standard output: cannot be written", kExitFailed);
}

int Run(int argc, char** argv) {
    CLI::App program("Writes and sends Japanese mails as Internet messages.", "mailengine");
    program.require_subcommand(0, 1);
    CWriteCommand write(program);
    CSendCommand send(program);
    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Help(program.help());
    } catch (const CLI::ParseError& error) {
        const auto asked = program.get_subcommands();
        const std::string level = asked.empty() ? "mailengine" : "mailengine " + asked.front()->get_name();
        return Fail(std::string(error.what()) + "; see " + level + " --help", kExitUsage);
    }
    if (write.IsAsked())
        write.Run();
    else if (send.IsAsked())
        send.Run();
    else
        return Fail("a command is missing; see mailengine --help", kExitUsage);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    // A closed pipe and a file that grows too large are failed writes, with their line on stderr.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (const CFailure& failure) {
        return Fail(failure.what(), failure.Status());
    } catch (const std::bad_alloc&) {
        return Fail("there is not enough memory; give smaller texts", kExitFailed);
    } catch (const std::exception& error) {
        return Fail(error.what(), kExitFailed);
    }
}
