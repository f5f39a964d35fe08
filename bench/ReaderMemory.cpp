// What reading keeps in memory, as a multiple of the message: the peak of a process that reads it, less that of one
// that reads a mail of one line. By the engine alone (a reply is prepared, or the attachments are extracted), and by
// "mailengine read".
#include <array>
#include <bench/Bench.h>
#include <bench/Files.h>
#include <bench/ReaderCases.h>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <tests/TempFolder.h>
#include <unistd.h>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>

namespace {

constexpr double kMessageBytes = 24 << 20;
constexpr int kMostAttachments = 9000;
constexpr char kEngine[] = "--read-by-engine";

// Grown no further than the file is long, as the text of a host is.
int ReadByEngine(const char* path, bool extracts) {
    std::string bytes(std::filesystem::file_size(path), '\0');
    const int file = open(path, O_RDONLY);
    if (read(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) return 1;
    const CString mail(std::move(bytes));
    const CTempFolder folder;
    CMailDoc document;
    (void)CEMailPerser().Perse(mail, folder.Path(), document, extracts ? 0 : 1);
    return 0;
}

// In KiB.
long PeakOf(const std::vector<const char*>& arguments) {
    const pid_t child = vfork();
    if (child == 0) {
        const int null = open("/dev/null", O_RDWR);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execv(arguments[0], const_cast<char* const*>(arguments.data()));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    bench::Require(
        child > 0 && wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) < 2,
        "a reader did not end well");
    return usage.ru_maxrss;
}

std::vector<const char*> Reader(bool isEngine, const std::string& path, bool extracts) {
    if (isEngine) return {"/proc/self/exe", kEngine, path.c_str(), extracts ? "1" : "0", nullptr};
    return {MAILENGINE_COMMAND, "read", path.c_str(), nullptr};
}

// In a process of its own: the message may not count as memory of the readers.
std::size_t MakeMail(const bench::ReaderCase& job, const std::string& path) {
    const pid_t child = fork();
    if (child == 0) {
        double size = job.size;
        size *= kMessageBytes / static_cast<double>(job.make(job.size).size());
        if (job.extracts && size > kMostAttachments) size = kMostAttachments;
        bench::WriteFile(path, job.make(static_cast<int>(size)));
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    return std::filesystem::file_size(path);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && argv[1] == std::string_view(kEngine)) return ReadByEngine(argv[2], *argv[3] == '1');
    const std::string small = bench::Folder() + "/small", path = bench::Folder() + "/mail";
    bench::WriteFile(small, "MIME-Version: 1.0\r\n\r\nx\r\n");
    std::array<long, 2> floors{};
    for (const bool isEngine : {false, true})
        floors[isEngine] = PeakOf(Reader(isEngine, small, false));
    std::printf("%-34s %10s %10s %10s\n", "case", "MiB", "engine", "command");
    for (const bench::ReaderCase& job : bench::ReaderCases()) {
        if (argc > 1 && job.name != std::string_view(argv[1])) continue;
        const auto size = static_cast<double>(MakeMail(job, path));
        std::printf("%-34s %10.1f", job.name, size / (1 << 20));
        for (const bool isEngine : {true, false}) {
            const long peak = PeakOf(Reader(isEngine, path, job.extracts)) - floors[isEngine];
            std::printf(" %8.2f x", static_cast<double>(peak) * 1024 / size);
        }
        std::printf("\n");
        std::fflush(stdout);
    }
}
