#include <gtest/gtest.h>
#include <set>
#include <string>
#include <tuple>

#include <mailengine/support/platform/files/Path.h>

namespace {

// U+F700 + byte, in UTF-8.
std::string Private(unsigned char byte) {
    return {'\xEF', static_cast<char>(0x9C + (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
}

TEST(Path, BecomesTheMachinesOwn) {
    const std::string spelled = "\xFF\xFF";
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"a slash passes", "/tmp\\x", "/tmp/x"},
        {"katakana SO and kanji HYOU end in a backslash's byte", "\x83\x5C\x5C\x95\x5C", "\xE3\x82\xBD/\xE8\xA1\xA8"},
        {"the two codes of one character", "\xFA\x40\xEE\xEF", "\xE2\x85\xB0\xE2\x85\xB0"},
        {"user-defined", "\xF0\x40", "\xEE\x80\x80"},
        {"an unassigned pair keeps no backslash", "\x85\x5C..\\x", Private(0x85) + Private(0x5C) + "../x"},
        {"a lead byte before a slash is one byte", "\x81/..", Private(0x81) + "/.."},
        {"a lead byte at the end", "a\x81", "a" + Private(0x81)},
        {"a spelled byte", spelled + "5C", "\\"},
        {"no spelling of a slash", spelled + "2F", Private(0xFF) + Private(0xFF) + "2F"},
        {"no spelling of a NUL", spelled + "00", Private(0xFF) + Private(0xFF) + "00"},
    };
    for (const auto& [what, path, native] : rows)
        EXPECT_EQ(platform::ToNativePath(path.c_str()), native) << what;
}

// Every character of one and of two bytes, assigned or not, names something of its own that comes back to the same.
TEST(Path, GivesEveryPairAStableNameInTheSameFolder) {
    std::set<std::string> names;
    for (int lead = 1; lead < 256; ++lead)
        for (int trail = 1; trail < 256; ++trail) {
            const char pair[] = {static_cast<char>(lead), static_cast<char>(trail), 0};
            const std::string native = platform::ToNativePath(pair);
            const bool hasSlash = native.find('/') != std::string::npos;
            const bool asked = lead == '/' || lead == '\\' || trail == '/' || (trail == '\\' && native.back() == '/');
            ASSERT_EQ(hasSlash, asked) << lead << ' ' << trail;
            ASSERT_EQ(platform::ToNativePath(platform::ToLibraryName(native)), native) << lead << ' ' << trail;
            names.insert(native);
        }
    // 255 * 255, less the slash that equals a backslash and the characters that have a second or third code.
    EXPECT_GT(names.size(), 255U * 255 - 2 * 255 - 800);
}

TEST(Path, TakesWhatAHostGivesOrNamesTheCharacter) {
    const struct {
        std::string native;
        const char* complaint;  // null: comes back to the same
    } rows[] = {
        {"", nullptr},
        {"/home/\xE5\xB1\xB1\xE7\x94\xB0/\xE8\xA1\xA8\xE7\xB4\x99.txt", nullptr},  // 山田/表紙
        {"\xE9\xAB\x99\xEF\xA8\x91", nullptr},                                     // 髙﨑
        {Private(0x80) + Private(0xFF), nullptr},
        {"a/\xF0\x9F\x98\x80.txt", "U+1F600 (\xF0\x9F\x98\x80)"},
        {"\xE3\x81\x8B\xE3\x82\x99", "U+3099"},  // か and a combining voiced mark
        {"\xC2\xA5", "U+00A5 (\xC2\xA5)"},       // a yen sign is no backslash
        {"\xC2\x85", "U+0085 in"},               // a control character is not shown
        {"a\\b", "U+005C (\\)"},
        {std::string("a\0b", 3), "U+0000"},
        {"a\xE3\x81", "0xE3"},
        {"\xC0\xAF", "0xC0"},
        {"\xED\xA0\x80", "0xED"},
        {Private(0x83) + Private(0x5C), "U+F783"},  // would make a katakana SO
        {Private(0xFF) + Private(0xFF) + "80", "U+F7FF"},
    };
    for (const auto& row : rows) {
        CString path("untouched");
        std::string error("untouched");
        const int taken = platform::ToLibraryPath(row.native, path, error);
        ASSERT_EQ(taken, row.complaint == nullptr) << row.native << ": " << error;
        EXPECT_EQ(taken ? platform::ToNativePath(path) : row.native, row.native);
        EXPECT_NE(error.find(taken ? "untouched" : row.complaint), std::string::npos) << error;
        EXPECT_EQ(taken ? error : std::string(path), "untouched");
    }
}

TEST(Path, TakesTheCodeThatAMailCarries) {
    CString path;
    std::string error;
    ASSERT_TRUE(platform::ToLibraryPath("髙﨑①", path, error));
    EXPECT_EQ(path.View(), "\xEE\xE0\xED\x95\x87\x40");  // not IBM's FBFC, FAB1
    EXPECT_EQ(platform::ToLibraryName("髙﨑①"), path);
}

}  // namespace
