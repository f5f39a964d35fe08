#include <bench/Bench.h>
#include <bench/Memory.h>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

// A figure of the process, in KiB.
long StatusOf(const char* name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(name, 0) == 0) return std::strtol(line.c_str() + std::strlen(name), nullptr, 10);
    return 0;
}

long GrowthOf(const Task& job) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // the peak starts anew
    const long before = StatusOf("VmRSS:");
    Require(StatusOf("VmHWM:") <= before + 256, "the peak of memory does not start anew");
    job();
    return StatusOf("VmHWM:") - before;
}

}  // namespace

void MeasureMemory(const std::string& job, const std::string& contestant, const std::function<Task()>& prepare) {
    int ends[2];
    Require(pipe(ends) == 0, "no pipe");
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const long growth = GrowthOf(prepare());
        // No end by exit: the files of the parent stay.
        _exit(write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
    }
    close(ends[1]);
    long growth = 0;
    const bool told = child > 0 && read(ends[0], &growth, sizeof growth) == sizeof growth;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    Require(told, "no figure for the memory of " + contestant);
    std::printf("%-26s %-12s %+9.1f MiB\n", job.c_str(), contestant.c_str(), static_cast<double>(growth) / 1024);
}

}  // namespace bench
