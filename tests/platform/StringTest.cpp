#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/support/platform/text/String.h>

namespace {

using std::string_literals::operator""s;

CString Text(const std::string& bytes) {
    return CString(std::string_view(bytes));
}

TEST(StringFind, StepsByWholeCharacters) {
    const std::tuple<const char*, std::string, const char*, int, int> rows[] = {
        {"start behind the end", "abc", "", 4, -1},
        {"empty needle", "abc", "", 3, 3},
        {"negative start", "abc", "a", -5, 0},
        {"null needle is empty", "abc", nullptr, 1, 1},
        {"backslash as trail byte of a kanji", "\x95\x5C\x5C", "\x5C", 0, 2},
        {"pairs fall from the first lead byte", "\x81\x81\x81\x40", "\x81\x40", 0, 2},
        {"half a character is no match", "\x82\xA0\x82", "\x82", 0, 2},
        {"start splits a character", "\x82\x41\x41", "\x41", 1, 1},
        {"lead byte swallows no CR", "\xE3\r\n", "\r\n", 0, 1},
        {"stops at a NUL", "ab\0cd"s, "cd", 0, -1},
        {"goes on behind a NUL", "ab\0cd"s, "cd", 3, 3},
        {"a NUL inside a match", "a\0b"s, "a", 0, 0},
    };
    for (const auto& [what, text, needle, start, expected] : rows)
        EXPECT_EQ(Text(text).Find(needle, start), expected) << what;
}

// The search works in windows of growing size: a match, a pair or a NUL must be seen at each place around a border.
TEST(StringFind, SeesEachPlaceOfALongText) {
    for (int at = 200; at < 1100; ++at) {
        const std::string pad(static_cast<std::size_t>(at), 'x');
        ASSERT_EQ(Text(pad + "@boundary@ tail").Find("@boundary@"), at);
        ASSERT_EQ(Text("\x81" + pad + "@end").Find("@end"), at + 1);
        ASSERT_EQ(Text(pad.substr(1) + "\x81@@").Find("@"), at + 1);
        ASSERT_EQ(Text(pad + "\0@"s).Find("@"), -1);
        ASSERT_EQ(Text(pad + "a needle of more than sixteen bytes").Find("a needle of more than sixteen"), at);
        const std::string leads(static_cast<std::size_t>(at), '\x81');
        ASSERT_EQ(Text(leads + "@@").Find("@"), at % 2 == 0 ? at : at + 1);
    }
}

TEST(StringFind, ReverseFindSeesWholeCharactersBeforeTheFirstNul) {
    EXPECT_EQ(Text("a\\\x95\x5C").ReverseFind('\\'), 1);
    EXPECT_EQ(Text("a\\b\0\\"s).ReverseFind('\\'), 1);
    EXPECT_EQ(Text("\x81\x81\x81\\").ReverseFind('\\'), -1);
    EXPECT_EQ(CString("abc").ReverseFind('x'), -1);
}

TEST(StringParts, CountBytesAndClampRanges) {
    const CString text("abcde");
    for (const auto& [count, head, tail, middle] : std::initializer_list<std::tuple<int, CString, CString, CString>>{
             {2, "ab", "de", "de"}, {9, "abcde", "abcde", "de"}, {-1, "", "", ""}}) {
        EXPECT_EQ(text.Left(count), head);
        EXPECT_EQ(text.Right(count), tail);
        EXPECT_EQ(text.Mid(3, count), middle);
    }
    EXPECT_EQ(text.Mid(-3, 2), "ab");
    EXPECT_EQ(text.Mid(5), "");
    EXPECT_EQ(CString("a\0b", 3).GetLength(), 3);
    EXPECT_EQ(CString('x', 3) + nullptr, "xxx");
}

TEST(StringReplace, ReplacesWholeCharactersFromLeftToRight) {
    CString text = Text("a\x83\x5C\\b\\\0\\"s);
    EXPECT_EQ(text.Replace('\\', '_'), 3);
    EXPECT_EQ(text, Text("a\x83\x5C_b_\0_"s));
    CString quoted("aaa\"b");
    EXPECT_EQ(quoted.Replace("\"", "\\\""), 1);
    EXPECT_EQ(quoted, "aaa\\\"b");
    EXPECT_EQ(quoted.Replace("aa", "a") + quoted.Replace("", "x"), 1);
    EXPECT_EQ(quoted, "aa\\\"b");
}

TEST(StringTrim, TakesSixBytesAndNoOther) {
    CString text("\t\n\v\f\r \x81\x40 a \r\n");
    text.TrimLeft();
    EXPECT_EQ(text, "\x81\x40 a \r\n");
    text.TrimRight();
    EXPECT_EQ(text, "\x81\x40 a");
}

TEST(StringFormat, FormatsAsTheLibraryUsesIt) {
    CString text;
    text.Format("%s_%08X_%08X", "BOUNDARY", 0x1234567890ABCDEFL, 0xAu);
    EXPECT_EQ(text, "BOUNDARY_90ABCDEF_0000000A");
    text.Format("%+03d%02d %d%%", 9, 0, INT_MIN);
    EXPECT_EQ(text, "+0900 -2147483648%");
    text.Format("%.2fMB", 1073741823 / 1048576.0);
    EXPECT_EQ(text, "1024.00MB");
    text = "x";
    text.Format("<%s.%s>", text, nullptr);
    EXPECT_EQ(text, "<x.>");
}

TEST(StringBuffer, EndsAtTheFirstNul) {
    CString text("old");
    char* const buffer = text.GetBufferSetLength(4);
    EXPECT_EQ(text.GetLength(), 4);
    buffer[0] = 'n';
    text.ReleaseBuffer(-1);
    EXPECT_EQ(text, "n");
    text.GetBufferSetLength(-1);
    text.ReleaseBuffer();
    EXPECT_EQ(text, "");
}

TEST(Characters, CompareIgnoresTheCaseOfAsciiOnly) {
    EXPECT_EQ(platform::mbsicmp("Content-TYPE", "content-type"), 0);
    EXPECT_NE(platform::mbsicmp("\x83\x41", "\x83\x61"), 0);  // trail bytes with the values of A and a
    EXPECT_NE(platform::mbsicmp("ab", "abc"), 0);
}

}  // namespace
