// Faults: what ends a command, and how the user is told. One thread.
#pragma once

#include <hostkit/letter/Outcome.h>
#include <stdexcept>
#include <string>

inline constexpr int kExitFailed = 1;  // what was asked could not be done; nothing half done stays behind
inline constexpr int kExitUsage = 2;   // the command line itself is wrong: an option unknown, missing or in conflict
inline constexpr int kExitData = 65;   // what was given to read is no message at all (EX_DATAERR of sysexits.h)
// The whole mail went out, but nobody said that it was taken: a second try may double it. A script may try again behind
// a failure, but not behind this (EX_PROTOCOL of sysexits.h).
inline constexpr int kExitUnknown = 76;
inline constexpr int kExitCancelled = 130;  // Ctrl-C ended it, as shells tell it (128 and the number of SIGINT)

// A fault of the command's own. Its text is one line of UTF-8 that names the thing and says what to do; the kit's
// faults are hostkit::Failure.
class CFailure : public std::runtime_error {
public:
    explicit CFailure(const std::string& text, int status = kExitFailed)
        : std::runtime_error(text), m_nStatus(status) {}

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
