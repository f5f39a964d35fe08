#include "Reader.h"

namespace {

TEST(Scanning, FindsAFieldInItsBlockOnlyAndTheEndOfABlock) {
    Check({{"A: 1\r\nsubject: x\r\n", "6"},
           {"A: 1\r\n\r\nSubject: x\r\n", "-1"},
           {"\r\n\r\nSubject: x\r\n", "-1"},     // an empty block
           {"--b^\r\nSubject: x\r\n", "5"},      // from the CRLF of a delimiter line
           {"A:\r\n^\r\nSubject: x\r\n", "-1"},  // from the empty line
           {"A:\r\n\r\n^Subject: x\r\n", "6"},
           {"A: 1\rSubject: 2\nSubject: 3\r\n", "-1"},  // a bare CR or LF ends no line
           {std::string("A: \0\r\nSubject: x\r\n", 18), "-1"}},
          [](std::string text) {
              const int start = TakeMark(text);
              return Joined({Reader().FindTopOfLine(CString(text), start, "Subject:")});
          });
    Check({{"X\r\nY\r\n^\r\nZ", "6"}, {"X\r\nY\r\n", "4"}, {"\r\nX\r\n\r\n", "-1"}, {"X\r\n\r\n^Y\r\n", "6"}},
          [](std::string text) {
              const int start = TakeMark(text);
              return Joined({Reader().FindEmptyLine(CString(text), start)});
          });
}

std::string FindDelimiter(const CString& text, int start, const char* boundary) {
    int at = -9, lineEnd = -9, last = -9;
    const int found = Reader().FindNextBoundary(text, start, boundary, at, lineEnd, &last);
    return Joined({found, at, lineEnd, last});
}

TEST(Scanning, FindsDelimitersByTheirFirstBytes) {
    const CString text = Mail("--abc\nx\n--abcd \ny\n--abc--");
    EXPECT_EQ(FindDelimiter(text, 0, "abc"), "1 8 17 0");
    EXPECT_EQ(FindDelimiter(text, 8, "abc"), "1 8 17 0");
    EXPECT_EQ(FindDelimiter(text, 17, "abc"), "1 20 29 1");
    EXPECT_EQ(FindDelimiter(text, 21, "abc"), "0 -1 -9 -9");
    EXPECT_EQ(FindDelimiter("\r\n--\x83\x5C\r\n--\x83\r\n", 0, "\x83"), "1 6 11 0");  // ソ is more than its lead byte
}

// An encoded word can put CRLFs into a boundary, so that each delimiter lies inside the one before.
TEST(Scanning, FindsEveryOneOfOverlappingDelimiters) {
    const std::string boundary = "a\r\n--a";
    const CString text((Repeated("\r\n--a", 5) + "\r\n--b\r\n--" + boundary + "--").c_str());
    for (const auto& [start, found] : std::vector<std::pair<int, const char*>>{
             {0, "1 0 5 0"}, {1, "1 5 10 0"}, {15, "1 15 20 0"}, {16, "1 30 35 1"}, {31, "0 -1 -9 -9"}})
        EXPECT_EQ(FindDelimiter(text, start, boundary.c_str()), found);
    const char fields[] = "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=\"=?x?Q?a=0D=0A--a?=\"\n\n";
    EXPECT_EQ(Read(Mail(fields) + text, nullptr, 1).result, 1) << "every delimiter up to the closing one is met";
}

}  // namespace
