// The two ways between UTF-8 and code page 932: codes that survive ISO-2022-JP, cousins, refusals with their place, and
// both directions of every code.
#include <gtest/gtest.h>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Utf8.h>
#include <string>

#include <mailengine/encoding/Language.h>
#include <mailengine/support/platform/text/Unicode.h>

namespace {

using hostkit::Extent;
using hostkit::Missing;

std::string Inside(const std::string& utf8, Extent extent = Extent::Letter, Missing missing = Missing::Refuse) {
    return std::string(hostkit::ToCodePage(utf8, extent, missing, {hostkit::Field::Body}).View());
}

std::string Refusal(const std::string& utf8, Extent extent = Extent::Letter, Missing missing = Missing::Refuse) {
    try {
        Inside(utf8, extent, missing);
    } catch (const hostkit::Failure& failure) {
        return failure.what();
    }
    return "taken";
}

std::string ThroughMail(const std::string& inside) {
    CString jis;
    CString back;
    CLanguage::SJIS_JIS(inside.c_str(), static_cast<unsigned int>(inside.size()), jis);
    CLanguage::JIS_SJIS(jis, static_cast<unsigned int>(jis.GetLength()), back);
    return std::string(back.View());
}

TEST(CodePage, TakesTheCodeThatAMailCarries) {
    const struct {
        const char* utf8;
        const char* inside;
        const char* back;
    } kCases[] = {
        {"日本", "\x93\xFA\x96\x7B", "日本"},
        {"ｱﾞ\xEF\xBD\xA1\xEF\xBE\x9F", "\xB1\xDE\xA1\xDF", "ｱﾞ｡ﾟ"},  // half-width kana stay as they are
        {"髙﨑", "\xEE\xE0\xED\x95", "髙﨑"},                        // not IBM's FBFC, FAB1
        {"ⅰ", "\xEE\xEF", "ⅰ"},
        {"①Ⅰ㈱№", "\x87\x40\x87\x54\x87\x8A\x87\x82", "①Ⅰ㈱№"},  // row 13, not IBM's FA4A, FA58, FA59
        {"≒∪￢∵", "\x81\xE0\x81\xBE\x81\xCA\x81\xE6", "≒∪￢∵"},  // JIS X 0208, not row 13
        {"〜−‖—", "\x81\x60\x81\x7C\x81\x61\x81\x5C", "～－∥―"},
        {"¢£¬¦", "\x81\x91\x81\x92\x81\xCA\xEE\xFA", "￠￡￢￤"},
        {"¥‾·\xC2\xA0|", "\x81\x8F\x81\x50\x81\x45 |", "￥￣・ |"},
        {"a\nb\rc\r\nd\n\r\te", "a\r\nb\r\nc\r\nd\r\n\r\n\te", "a\r\nb\r\nc\r\nd\r\n\r\n\te"},
    };
    for (const auto& test : kCases) {
        EXPECT_EQ(Inside(test.utf8), test.inside) << test.utf8;
        EXPECT_EQ(hostkit::FromCodePage(test.inside), test.back);
    }
}

TEST(CodePage, EveryCharacterThatItTakesSurvivesTheMail) {
    int taken = 0;
    for (char32_t code = 0x80; code < 0x10000; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        std::string utf8;
        platform::AppendUtf8(utf8, code);
        if (Refusal(utf8) != "taken") continue;
        const std::string inside = Inside(utf8);
        const std::string outside = hostkit::FromCodePage(inside);
        ++taken;
        EXPECT_EQ(Inside(outside), inside) << utf8;
        // The engine widens half-width kana on the way; all else comes back to the byte.
        if (code >= 0xFF61 && code <= 0xFF9F) continue;
        EXPECT_EQ(ThroughMail(inside), inside) << utf8;
    }
    EXPECT_GT(taken, 7300);  // JIS X 0208 has 6,879 characters, the two further sets about 450
}

TEST(CodePage, CarriesCodesThatOtherProgramsWrote) {
    EXPECT_EQ(hostkit::ToCarriedCodes("\xFB\xFC\xFA\x4A\\a", {}).View(), "\xEE\xE0\x87\x54\\a");
    EXPECT_THROW(hostkit::ToCarriedCodes("\xF0\x40", {}), hostkit::Failure);
}

TEST(CodePage, RefusesWithLineAndColumn) {
    const struct {
        std::string utf8;
        Extent extent;
        const char* start;
    } kCases[] = {
        {"a😀", Extent::Letter, "body: line 1, column 2: 😀 (U+1F600) has no code"},
        {"日本\r\n語\n\rab한", Extent::Letter, "body: line 4, column 3: 한 (U+D55C)"},
        {"\xEE\x80\x80", Extent::Letter, "body: line 1, column 1: \xEE\x80\x80 (U+E000)"},  // user-defined, F040
        {"a\nb", Extent::Line, "body: line 1, column 2: a line ends here"},
        {"a\tb", Extent::Line, "body: line 1, column 2: the control character U+0009"},
        {std::string("a\0b", 3), Extent::Letter, "body: line 1, column 2: the control character U+0000"},
        {"\xC2\x85", Extent::Letter, "body: line 1, column 1: the control character U+0085"},
        {"日\n\x93\xFA", Extent::Letter, "body: line 2, column 1: the byte 0x93 is not UTF-8"},
        {"a\xC0\x80", Extent::Letter, "body: line 1, column 2: the byte 0xC0"},     // not the shortest form
        {"\xED\xA0\x80", Extent::Letter, "body: line 1, column 1: the byte 0xED"},  // a surrogate
        {"\xE6\x97", Extent::Letter, "body: line 1, column 1: the byte 0xE6"},      // cut short
        {"\xF4\x90\x80\x80", Extent::Letter, "body: line 1, column 1: the byte 0xF4"},
    };
    for (const auto& test : kCases)
        EXPECT_EQ(Refusal(test.utf8, test.extent).find(test.start), 0u) << test.start;
}

TEST(CodePage, ReplacesWhatItLacksAndNothingElse) {
    EXPECT_EQ(Inside("a😀日", Extent::Line, Missing::Replace), "a\x81\xAC\x93\xFA");
    EXPECT_NE(Refusal("a\x01", Extent::Letter, Missing::Replace), "taken");
    EXPECT_NE(Refusal("a\xFF", Extent::Letter, Missing::Replace), "taken");
}

TEST(CodePage, ShowsBytesWithoutACharacter) {
    EXPECT_EQ(hostkit::FromCodePage("\x80\xA0\xFD\x82"), "\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(hostkit::FromCodePage("\x82\r\n\x85\x40z"), "\uFFFD\r\n\uFFFDz");  // a line end is no trail byte
}

TEST(Utf8, ShowsNothingThatATerminalWouldObey) {
    EXPECT_EQ(hostkit::Shown("日\x1B[2J\r\n\x7F\xC2\x9B\xFF\u202E\u200B"),
              "日\\x1B[2J\\x0D\\x0A\\x7F\\x9B\\xFF\\u202E\\u200B");
}

TEST(CodePage, WhatCannotBeCarriedHasItsPlace) {
    const std::vector<hostkit::Place> places = hostkit::UncarriedIn("髙😀\r\n\t〜\x01\n\r\xFFx");
    std::string text;
    for (const hostkit::Place& place : places)
        text += std::to_string(place.line) + ':' + std::to_string(place.column) + ' ';
    EXPECT_EQ(text, "1:2 2:3 4:1 ");
}

}  // namespace
