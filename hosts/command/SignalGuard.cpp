#include "SignalGuard.h"

#include <csignal>
#include <hostkit/files/PendingFile.h>

namespace {

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
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction old {};
        sigaction(number, nullptr, &old);
        if (old.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
    }
}
