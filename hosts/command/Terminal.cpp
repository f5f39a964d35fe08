#include "Terminal.h"

#include <cerrno>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <unistd.h>

#include "Faults.h"
#include "StandardFiles.h"

namespace {

constexpr std::size_t kBufferBytes = 64 * 1024;

std::string g_waiting;  // of the answer
int g_error = 0;        // of the first write of the answer that failed

void Flush() {
    if (g_error == 0) g_error = hostkit::WriteAll(STDOUT_FILENO, g_waiting);
    g_waiting.clear();
}

}  // namespace

void terminal::Complain(const std::string& text) {
    Flush();
    (void)hostkit::WriteAll(STDERR_FILENO, "mailengine: " + hostkit::Shown(text) + '\n');
}

void terminal::Warn(const std::string& text) {
    Complain(hostkit::Words("warning: {1}", text));
}

void terminal::Put(const std::string& text) {
    if (text.size() >= kBufferBytes) {
        Flush();
        if (g_error == 0) g_error = hostkit::WriteAll(STDOUT_FILENO, text);
        return;
    }
    g_waiting += text;
    if (g_waiting.size() >= kBufferBytes) Flush();
}

void terminal::Finish() {
    Flush();
    if (g_error == EBADF) CheckStandardOutput();
    if (g_error != 0)
        throw CFailure(hostkit::Words("standard output: cannot be written: {1}", hostkit::SystemWords(g_error)),
                       EX_IOERR);
}
