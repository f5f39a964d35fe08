// What reading costs as its input doubles: each case is read at a size and at twice that, and the ratio of the times is
// printed. 2 is a cost that grows with the input, 4 one that grows with its square. Times are those of the processor,
// so that a busy machine does not look like a cost.
#include <algorithm>
#include <bench/Bench.h>
#include <bench/ReaderCases.h>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>
#include <tests/TempFolder.h>
#include <utility>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>

namespace {

using Case = bench::ReaderCase;

constexpr int kFewestRounds = 5;
constexpr double kSecondsACase = 0.5;

double SecondsToRead(const Case& job, const CString& mail) {
    const CTempFolder folder;  // a new one for each extraction
    const CString path = folder.Path();
    CMailDoc document;
    const std::clock_t start = std::clock();
    const int result = CEMailPerser().Perse(mail, path, document, job.extracts ? 0 : 1);
    const std::clock_t end = std::clock();
    bench::Require(result == job.result, std::string(job.name) + " gave another result");
    return static_cast<double>(end - start) / CLOCKS_PER_SEC;
}

// The best times for a mail and for one of twice its size. Their rounds are interleaved, so that a slow moment of the
// machine hits both, and short ones are many.
std::pair<double, double> BestOf(const Case& job, int size) {
    const CString mail(job.make(size)), larger(job.make(2 * size));
    double once = SecondsToRead(job, mail), twice = SecondsToRead(job, larger), spent = 0;
    for (int round = 1; round < kFewestRounds || spent < kSecondsACase; ++round) {
        once = std::min(once, SecondsToRead(job, mail));
        twice = std::min(twice, SecondsToRead(job, larger));
        spent += once + twice;
    }
    return {once, twice};
}

}  // namespace

// Arguments: a factor of all sizes, and the one case to read.
int main(int argc, char** argv) {
    const int factor = argc > 1 ? std::max(1, std::atoi(argv[1])) : 1;
    std::printf("%-28s %12s %10s %10s\n", "case", "size", "ms", "x 2 takes");
    for (const Case& job : bench::ReaderCases()) {
        if (argc > 2 && job.name != std::string_view(argv[2])) continue;
        const auto [once, twice] = BestOf(job, job.size * factor);
        std::printf("%-28s %12d %10.2f %8.2f x\n", job.name, job.size * factor, once * 1e3, twice / once);
        std::fflush(stdout);
    }
}
