// CLanguage: worked bytes of both directions, half-width kana, cuts, and both conversions against their rules written
// out one by one.
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/models/LiteralConversions.h>
#include <tuple>
#include <utility>
#include <vector>

#include <mailengine/encoding/Language.h>

namespace {

using Bytes = std::string;

Bytes ToJis(const Bytes& text, const Bytes& front = "") {
    CString out{std::string_view(front)};
    CLanguage::SJIS_JIS(text.c_str(), static_cast<unsigned int>(text.size()), out);
    return Bytes(out.View());
}

Bytes ToShiftJis(const Bytes& text) {
    CString out("old");
    CLanguage::JIS_SJIS(text.data(), static_cast<unsigned int>(text.size()), out);
    return Bytes(out.View());
}

Bytes EveryByte() {
    Bytes all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    return all;
}

// Runs check over random texts of each alphabet: every short length, and some longer than any buffer inside.
template <class Check>
void OnRandomTexts(const std::vector<Bytes>& alphabets, Check check) {
    std::mt19937 random(20030401);
    for (const Bytes& alphabet : alphabets)
        for (std::size_t round = 0; round < 610 && !testing::Test::HasFailure(); ++round) {
            Bytes text(round < 600 ? round / 2 : 3000 + random() % 40000, '\0');
            for (char& c : text)
                c = alphabet[random() % alphabet.size()];
            check(text);
        }
}

using namespace std::string_view_literals;
using Rows = std::vector<std::pair<Bytes, Bytes>>;

// Texts that come back as they were.
const Rows kBothWays = {
    {"a\x82\xA0 b", "a\x1b$B$\"\x1b(B b"},  // a, あ, b
    {"\x82\xA0\r\n\x82\xA0", "\x1b$B$\"\x1b(B\r\n\x1b$B$\"\x1b(B"},
    {"\x80\xA0\xFD", "\x80\xA0\xFD"},                    // single bytes that are no ASCII
    {"\x81\x40\xEF\xFC\x81\x80", "\x1b$B!!~~!`\x1b(B"},  // the first and the last cell, and the one behind the gap
};

const Rows kToJis = {
    {"", "\x1b(B"},
    {"a\x82", "a\x1b$B\x1b(B"},                                             // a lead byte at the end is an empty run
    {"\x82 b", "\x1b$B\x1b(Bb"},                                            // a bad trail byte goes with its lead byte
    {"\xF0\x40\xFC\xFC", "\x1b$B\x7F!\x98~\x1b(B"},                         // rows that the wire does not have pass
    {"\xB1\xDE\xB6\xDF\xC5\xDE\xB3\xDE", "\x1b$B%\"!+%+!,%J!+%&!+\x1b(B"},  // marks that join no kana
};

const Rows kToShiftJis = {
    {"", ""},
    {"\x82\xA0 a", "\x82\xA0 a"},                      // raw Shift-JIS without an escape
    {"\x1b$B$\"", "\x82\xA0"},                         // no way back to single bytes
    {"\x1b$@$\"\x1b(Jx\x1b(Hy", "\x82\xA0xy"},         // the set of 1978, Roman and its old final byte
    {"\x1b(I1", "1"},                                  // 7-bit kana stay
    {"\x1bXab\x1b(Xa\x1b$(Da", "XabXa(Da"},            // unknown escapes lose what is known of them
    {"\x1b$B$\"\r\n$\"\x1b(Bx", "\x82\xA0"},           // a line end inside a double-byte run cuts the text
    {"\x1b$B$\x1b(Ba\x1b$B!!!", "a\x91\x9F\x81\x40"},  // an odd run, the next one out of step
    {Bytes("a\0b"sv), "a"},                            //
};

TEST(Conversion, WorkedBytes) {
    for (const auto& [shiftJis, wire] : kBothWays) {
        EXPECT_EQ(ToJis(shiftJis), wire);
        EXPECT_EQ(ToShiftJis(wire), shiftJis);
    }
    for (const auto& [shiftJis, wire] : kToJis)
        EXPECT_EQ(ToJis(shiftJis), wire);
    for (const auto& [wire, shiftJis] : kToShiftJis)
        EXPECT_EQ(ToShiftJis(wire), shiftJis);
}

TEST(Conversion, TakesTheByteBehindTheText) {
    CString out;
    CLanguage::SJIS_JIS("\x82\xA0", 1, out);
    CLanguage::SJIS_JIS("\xB6\xDE", 1, out);
    EXPECT_EQ(out, "\x1b$B$\"\x1b(B\x1b$B%,\x1b(B");
}

TEST(Conversion, ReplacesItsOwnSource) {
    CString text("\x1b$B$\"\x1b(B");
    CLanguage::JIS_SJIS(text, static_cast<unsigned int>(text.GetLength()), text);
    EXPECT_EQ(text, "\x82\xA0");
    CLanguage::CutSJIS(text, 2, 1, text);
    EXPECT_EQ(text, "");
}

TEST(Conversion, ShiftJisToJisFollowsItsRules) {
    const std::vector<Bytes> alphabets{EveryByte(), "\x82\xA0\x81\x83\x93\xFA", "\xB6\xCA\xDE\xDF\xB1\x83\x41",
                                       "a \r\n\x82\xA0\xB6\xDE", "\x82\x9F\xFC\x40\x7F"};
    OnRandomTexts(alphabets, [](const Bytes& text) {
        ASSERT_EQ(ToJis(text), LiteralToJis(text, ""));
        ASSERT_EQ(ToJis(text, "x"), LiteralToJis(text, "x"));
    });
}

TEST(Conversion, JisToShiftJisFollowsItsRules) {
    const std::vector<Bytes> alphabets{EveryByte(),   "\x1b$B$\"%+",   "\x1b(J$@BHI1a",
                                       "\x1b$B(ab!~", "\x1b$B!\x7F ~", "abcdefghijklmnopqrstuvwxyz"};
    OnRandomTexts(alphabets, [](const Bytes& text) {
        ASSERT_EQ(ToShiftJis(text), LiteralToShiftJis(text));
        const Bytes kanji = "\x1b$B" + text;
        ASSERT_EQ(ToShiftJis(kanji), LiteralToShiftJis(kanji));
    });
}

TEST(Conversion, EveryCharacterOfTheWireComesBack) {
    int valid = 0;
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second) {
            const char row = static_cast<char>(first), cell = static_cast<char>(second);
            const Bytes pair = KanjiToShiftJis(row, cell);
            if (pair == Bytes(2, '\0')) continue;
            ++valid;
            ASSERT_EQ(KanjiToJis(pair[0], pair[1]), Bytes({row, cell}));
        }
    EXPECT_EQ(valid, 94 * 94);
}

// Golden: the kana in the order of JIS X 0201, the marks at the end, as full-width characters in the order of the wire.
TEST(Conversion, KanaStandAloneAndJoin) {
    EXPECT_EQ(ToJis("\xA1\xA2\xA3\xA4\xA5\xA6\xA7\xA8\xA9\xAA\xAB\xAC\xAD\xAE\xAF\xB0\xB1\xB2\xB3\xB4\xB5\xB6\xB7\xB8"
                    "\xB9\xBA\xBB\xBC\xBD\xBE\xBF\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF\xD0"
                    "\xD1\xD2\xD3\xD4\xD5\xD6\xD7\xD8\xD9\xDA\xDB\xDC\xDD\xDE\xDF"),
              "\x1b$B!#!V!W!\"!&%r%!%#%%%'%)%c%e%g%C!<%\"%$%&%(%*%+%-%/%1%3%5%7%9%;%=%?%A%D%F%H%J%K%L%M%N%O%R%U%X%[%^"
              "%_%`%a%b%d%f%h%i%j%k%l%m%o%s!+!,\x1b(B");
    EXPECT_EQ(ToJis("\xB6\xDE\xB7\xDE\xB8\xDE\xB9\xDE\xBA\xDE\xBB\xDE\xBC\xDE\xBD\xDE\xBE\xDE\xBF\xDE\xC0\xDE\xC1\xDE"
                    "\xC2\xDE\xC3\xDE\xC4\xDE\xCA\xDE\xCB\xDE\xCC\xDE\xCD\xDE\xCE\xDE\xCA\xDF\xCB\xDF\xCC\xDF\xCD\xDF"
                    "\xCE\xDF"),
              "\x1b$B%,%.%0%2%4%6%8%:%<%>%@%B%E%G%I%P%S%V%Y%\\%Q%T%W%Z%]\x1b(B");
}

TEST(Conversion, CutsBetweenCharacters) {
    const std::tuple<const char*, unsigned int, unsigned int, const char*> cases[] = {
        {"\x82\xA0\x82\xA2\x82\xA4", 6, 5, "\x82\xA0\x82\xA2"},  // あいう
        {"\x82\xA0\x82\xA2\x82\xA4", 6, 1, ""},
        {"\x82\xA0\x82\xA2\x82\xA4", 6, 6, "\x82\xA0\x82\xA2\x82\xA4"},
        {"\x82\xA0\x82\xA2\x82\xA4", 2, 2, "\x82\xA0\x82\xA2\x82\xA4"},  // the whole text, behind len too
        {"\xB6\xDE\xB6\xDE", 4, 3, "\xB6\xDE\xB6"},
    };
    for (const auto& [text, length, most, head] : cases) {
        CString out("old");
        CLanguage::CutSJIS(text, length, most, out);
        EXPECT_EQ(out, head) << most;
    }
}

TEST(Conversion, TellsJapaneseByItsBytes) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool lead = (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
        const bool kana = byte >= 0xA1 && byte <= 0xDF;
        const Bytes text{'a', static_cast<char>(byte)};
        EXPECT_EQ(CLanguage::IsJSjisKanji(text[1]) != 0, lead) << byte;
        EXPECT_EQ(CLanguage::IsHankakuKana(text[1]) != 0, kana) << byte;
        EXPECT_EQ(CLanguage::IsJapanese(CString(std::string_view(text))), lead || kana) << byte;
    }
}

}  // namespace
