// MailProgram: this machine's own mail system, behind the interface that every one of them has: a program like
// sendmail, which takes a message on its standard input and knows about servers, logins, encryption and queues. One
// thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <hostkit/characters/Failure.h>
#include <string>
#include <vector>

namespace hostkit {

struct MailProgram {
    std::filesystem::path path = "/usr/sbin/sendmail";  // where the Filesystem Hierarchy Standard has it
};

// The program at a path, or, for a name without a slash, the one that PATH finds.
HOSTKIT_API MailProgram ProgramNamed(const std::string& name);

// Throws Failure, of the kind Program, if there is no program that this user may run.
HOSTKIT_API void CheckProgram(const MailProgram& program);

struct ProgramResult {
    enum class State {
        Taken,      // it ended with 0, and the mail is the mail system's
        NotTaken,   // it ended with another status, or with 0 and never looked at the mail
        Cancelled,  // it was stopped before it had read all
        Unknown,    // it read all, and was stopped or broke down before it said what became of it
    };
    State state = State::Taken;
    int status = 0;       // its exit status, or the signal that ended it, below 0
    std::string words{};  // the first of what it said, on one line of UTF-8
};

// Runs the program as "PROGRAM -i -f sender -- recipients" and waits for its end. The message is a file, whole before
// the program begins: whatever ends this process, no half message is taken for a whole one, as it would be at the end
// of a pipe. goOn is asked some 20 times a second with the bytes that were read so far; at its false the program gets a
// SIGTERM, and two seconds later a SIGKILL, together with all processes that it began. They run in a session of their
// own, where nothing can ask a terminal for a password. Throws Failure if it cannot be run.
ProgramResult RunProgram(const MailProgram& program, const std::string& sender,
                         const std::vector<std::string>& recipients, const std::filesystem::path& message,
                         const std::function<bool(std::uint64_t bytes)>& goOn);

}  // namespace hostkit
