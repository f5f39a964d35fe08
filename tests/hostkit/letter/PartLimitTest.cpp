#include <gtest/gtest.h>
#include <hostkit/letter/PartLimit.h>
#include <string>

namespace {

std::string Mail(const std::string& parameter, const std::string& line, int lines) {
    std::string mail = "Content-Type: multipart/mixed; " + parameter + "\r\n\r\n";
    for (int i = 0; i < lines; ++i)
        mail += "\r\n--" + line + "\r\n\r\n";
    return mail;
}

TEST(PartLimit, CountsTheLinesThatTheParserTakesForDelimiters) {
    const struct {
        const char *parameter, *line;
        bool isDelimiter;
    } cases[] = {
        {"boundary=ab", "ab", true},
        {"boundary=ab", "a", false},
        {"BOUNDARY = \"ab\"", "abc", true},
        {"boundary=\"a\r\n\tb\"", "ab", true},
        {"boundary=\"=?iso-2022-jp?B?YWI=?=\"", "ab", true},
        {"boundary=b; x=\r\n", "a", false},
        {"boundary=ab", "ab--", false},
        {"boundary=a; boundary=ab; boundary=c", "c", true},
    };
    for (const auto& [parameter, line, isDelimiter] : cases) {
        EXPECT_EQ(hostkit::HasTooManyParts(CString(Mail(parameter, line, hostkit::kMaxParts + 1))), isDelimiter)
            << parameter;
        EXPECT_FALSE(hostkit::HasTooManyParts(CString(Mail(parameter, line, hostkit::kMaxParts)))) << parameter;
    }
}

}  // namespace
