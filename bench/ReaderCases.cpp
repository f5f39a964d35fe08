#include <bench/ReaderCases.h>
#include <string_view>

namespace bench {

namespace {

constexpr char kMime[] = "MIME-Version: 1.0\r\n";

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
std::string Nested(int size, const char* fields = "") {
    std::string open, close;
    for (int i = 0; i < 100; ++i) {
        const std::string boundary = std::to_string(i).append("x");
        open += Multipart("related", boundary, "\r\n--" + boundary + "\r\n");
        close = "\r\n--" + boundary + "--" + close;
    }
    return kMime + open + fields + "\r\n" + Repeated("text of a mail\r\n", size / 16) + close;
}

}  // namespace

const std::vector<ReaderCase>& ReaderCases() {
    static const std::vector<ReaderCase> cases = {
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
        {"100 levels", 1 << 20, [](int n) { return Nested(n); }},
        {"100 levels, the inmost faulty", 1 << 20, [](int n) { return Nested(n, "Content-Type: image/gif\r\n"); },
         false, 0},
        {"100 levels, no closing delimiter", 1 << 20,
         [](int n) {
             std::string mail = Nested(n);
             return mail.erase(mail.rfind("--"));
         },
         false, 0},
        {"plain text", 32 << 20,
         [](int n) { return kMime + ("\r\n" + Repeated("a line of a plain text of some length\r\n", n / 39)); }},
        {"faulty text", 32 << 20,
         [](int n) {
             return Parts("mixed",
                          "\r\n--b\r\n\r\n" + Repeated("a line\r\n", n / 8) + "\r\n--b\r\nContent-Type: a/b\r\n\r\nx");
         },
         false, 0},
    };
    return cases;
}

}  // namespace bench
