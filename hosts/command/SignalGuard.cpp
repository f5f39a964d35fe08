#include "SignalGuard.h"

#include <csignal>
#include <hostkit/files/PendingFile.h>

namespace {

// Those that end a program from outside or at a limit. A fault of the program itself (SIGSEGV and its kin) is not among
// them: nothing can be relied upon behind it, the list of what to remove neither.
constexpr int kEnding[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM,   SIGUSR1, SIGUSR2,  SIGALRM,
                           SIGXCPU, SIGPROF, SIGPOLL, SIGVTALRM, SIGPWR,  SIGSTKFLT};

void RemoveAndEnd(int number) {
    hostkit::RemovePendingFiles();
    signal(number, SIG_DFL);
    raise(number);
}

}  // namespace

void InstallSignalGuard() {
    struct sigaction action {};
    action.sa_handler = RemoveAndEnd;
    sigfillset(&action.sa_mask);
    const auto install = [&](int number) {
        struct sigaction old {};
        if (sigaction(number, nullptr, &old) == 0 && old.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
    };
    for (const int number : kEnding)
        install(number);
    for (int number = SIGRTMIN; number <= SIGRTMAX; ++number)
        install(number);
}
