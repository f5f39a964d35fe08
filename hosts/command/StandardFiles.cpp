#include "StandardFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <unistd.h>

namespace {

void Check(int descriptor, int wrongWay, const std::string& name) {
    const int flags = fcntl(descriptor, F_GETFL);
    if (flags != -1 && (flags & O_ACCMODE) != wrongWay) return;
    using hostkit::FailureKind;
    throw hostkit::Failure(wrongWay == O_WRONLY ? FailureKind::Input : FailureKind::Target,
                           {hostkit::Field::None, name}, hostkit::Words("is closed; open it, or name a file"));
}

}  // namespace

int OpenMissingStandardFiles() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) != -1) continue;
        // The lowest number that is free is the one that is missing.
        if (open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) != descriptor) return 0;
    }
    return 1;
}

bool HasPipedInput() {
    const int flags = fcntl(STDIN_FILENO, F_GETFL);
    return flags != -1 && (flags & O_ACCMODE) != O_WRONLY && isatty(STDIN_FILENO) == 0;
}

void CheckStandardInput() {
    Check(STDIN_FILENO, O_WRONLY, hostkit::Words("standard input"));
}

void CheckStandardOutput() {
    Check(STDOUT_FILENO, O_RDONLY, hostkit::Words("standard output"));
}
