// What reading costs as its input doubles: each case is read at a size and at twice that, and the ratio of the times is
// printed. 2 is a cost that grows with the input, 4 one that grows with its square. Times are those of the processor,
// so that a busy machine does not look like a cost.
#include <algorithm>
#include <bench/Bench.h>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <tests/TempFolder.h>
#include <utility>
#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>

namespace {

constexpr char kMime[] = "MIME-Version: 1.0\r\n";
constexpr int kFewestRounds = 5;
constexpr double kSecondsACase = 0.5;

std::string Repeated(std::string_view text, int times) {
    std::string all;
    all.reserve(text.size() * static_cast<std::size_t>(times));
    while (times-- > 0)
        all += text;
    return all;
}

std::string Numbered(const char* before, int count, const char* behind) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += before + std::to_string(i) + behind;
    return all;
}

std::string Multipart(const char* subtype, const std::string& boundary, const std::string& parts) {
    return "Content-Type: multipart/" + std::string(subtype) + "; boundary=\"" + boundary + "\"\r\n\r\n" + parts;
}

std::string Parts(const char* subtype, const std::string& parts) {
    return kMime + Multipart(subtype, "b", parts) + "\r\n--b--\r\n";
}

// Related parts in one another, 100 levels deep, around size bytes.
std::string Nested(int size) {
    std::string open, close;
    for (int i = 0; i < 100; ++i) {
        const std::string boundary = std::to_string(i).append("x");
        open += Multipart("related", boundary, "\r\n--" + boundary + "\r\n");
        close = "\r\n--" + boundary + "--" + close;
    }
    return kMime + open + "\r\n" + Repeated("text of a mail\r\n", size / 16) + close;
}

struct Case {
    const char* name;
    int size;  // of what make repeats
    std::function<std::string(int)> make;
    bool extracts = false;
    int result = 1;
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"header fields", 100000, [](int n) { return Repeated("X-Field: value\r\n", n) + kMime + "\r\n"; }},
        {"continuation lines", 100000,
         [](int n) { return kMime + ("Subject: x" + Repeated("\r\n\tx", n)) + "\r\n\r\n"; }},
        {"encoded words", 100000,
         [](int n) { return kMime + ("Subject: " + Repeated("=?iso-2022-jp?B?GyRCJCIbKEI=?=", n)) + "\r\n\r\n"; }},
        {"parameters", 100000,
         [](int n) { return kMime + ("Content-Type: text/plain" + Numbered("; p", n, "=x")) + "\r\n\r\nbody"; }},
        {"numbered pieces", 10000,
         [](int n) { return kMime + ("Content-Type: image/gif" + Numbered("; name*", n, "*=x")) + "\r\n\r\nx\r\n"; }},
        {"To addresses", 100000, [](int n) { return kMime + ("To: " + Numbered("A <a", n, "@b>, ")) + "\r\n\r\n"; }},
        {"From addresses", 100000, [](int n) { return kMime + ("From: " + Numbered("a", n, "@b,")) + "\r\n\r\n"; }},
        {"parts", 100000, [](int n) { return Parts("mixed", Repeated("\r\n--b\r\n\r\nx", n)); }},
        {"parts, no empty line", 100000, [](int n) { return Parts("alternative", Repeated("\r\n--b\r\nX: y", n)); }},
        {"mixed parts, no empty line", 100000, [](int n) { return Parts("mixed", Repeated("\r\n--b\r\nX: y", n)); }},
        {"related parts", 100000, [](int n) { return Parts("related", Repeated("\r\n--b\r\n\r\nx", n)); }},
        {"overlapping delimiters", 20000,
         [](int n) {
             return kMime + Multipart("mixed", "=?x?Q?" + Repeated("=0D=0A--", n / 2) + "?=", Repeated("\r\n--", n));
         },
         false, 0},
        {"attachments of one name", 1000,
         [](int n) { return Parts("mixed", Repeated("\r\n--b\r\nContent-Type: a/b; name=a.txt\r\n\r\nx", n)); }, true},
        {"body of -- lines", 32 << 20,
         [](int n) { return Parts("mixed", "\r\n--b\r\n\r\n" + Repeated("--a line of a mail\r\n", n / 20)); }},
        {"100 levels", 1 << 20, Nested},
    };
    return cases;
}

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
    for (const Case& job : Cases()) {
        if (argc > 2 && job.name != std::string_view(argv[2])) continue;
        const auto [once, twice] = BestOf(job, job.size * factor);
        std::printf("%-28s %12d %10.2f %8.2f x\n", job.name, job.size * factor, once * 1e3, twice / once);
        std::fflush(stdout);
    }
}
