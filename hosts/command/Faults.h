// Faults: what ends a command, and how the user is told. One thread.
#pragma once

#include <hostkit/letter/Outcome.h>
#include <stdexcept>
#include <string>
#include <sysexits.h>

// The exit statuses are those of sysexits.h, as sendmail and msmtp give them, so that a script can tell later from
// never. Help and docs/command.md list those in use.
inline constexpr int kExitUsage = EX_USAGE;  // the command line itself: an option unknown, missing or in conflict
// The whole mail went out, but nobody said that it was taken: a second try may double it. A script may try again behind
// a failure, but not behind this.
inline constexpr int kExitUnknown = EX_PROTOCOL;
inline constexpr int kExitCancelled = 130;  // Ctrl-C ended it, as shells tell it (128 and the number of SIGINT)

// A fault of the command's own. Its text is one line of UTF-8 that names the thing and says what to do; the kit's
// faults are hostkit::Failure.
class CFailure : public std::runtime_error {
public:
    explicit CFailure(const std::string& text, int status = EX_DATAERR) : std::runtime_error(text), m_nStatus(status) {}

    int Status() const { return m_nStatus; }

private:
    int m_nStatus;
};

// Warns of what the outcome's text says. Throws for a work that was not done: the outcome's failure, or a CFailure for
// one that was cancelled or is unknown.
void CheckDone(const hostkit::Outcome& outcome);

// Tells the user, in one line on stderr and with the options that are at fault, of the exception that is being handled,
// and gives the exit status for it.
int ReportFault();
