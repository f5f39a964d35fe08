// The transfer codecs: Base64 both ways, padding and short groups, buffer limits, decoding in pieces; quoted-printable
// and percent-hex with good and bad digits.
#include <climits>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/models/LiteralDecoders.h>
#include <tuple>
#include <utility>
#include <vector>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Groups.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>

namespace {

using Bytes = std::string;
using namespace std::string_view_literals;

Bytes DecodeAll(Decoder decoder, std::string_view text) {
    const Decoded decoded = DecodeInto(decoder, CString(text), static_cast<unsigned int>(text.size()) + 2);
    EXPECT_EQ(decoded.result, 1);
    return decoded.bytes;
}

Bytes Encode(const Bytes& bytes, const Bytes& front = "") {
    CString text{std::string_view(front)};
    const std::vector<unsigned char> data(bytes.begin(), bytes.end());
    EXPECT_EQ(CBase64::Encode(data.data(), static_cast<unsigned int>(data.size()), text), 1);
    return Bytes(text.View());
}

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

Bytes InLines(std::string_view text, std::size_t width, std::string_view lineEnd) {
    Bytes lines;
    for (std::size_t at = 0; at < text.size(); at += width)
        lines.append(text.substr(at, width)).append(lineEnd);
    return lines;
}

Bytes RandomBytes(std::mt19937& random, std::size_t length) {
    Bytes bytes(length, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random() & 0xFF);
    return bytes;
}

// What a path makes of whole groups: the plain one, which any machine has, or the machine's best.
Bytes Groups(std::string_view text, bool plain) {
    std::vector<unsigned char> buffer(text.size() + 3);
    const base64::Progress done = plain ? base64::DecodePlain(text, buffer.data(), buffer.size())
                                        : base64::DecodeGroups(text, buffer.data(), buffer.size());
    return Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(done.made));
}

Bytes EncodePlain(const Bytes& bytes) {
    Bytes text(bytes.size() / 3 * 4 + 4, '\0');
    text.resize(base64::EncodePlain(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), text.data()));
    return text;
}

TEST(Base64, EstimatesItsSize) {
    const unsigned int cases[][2] = {
        {0, 4}, {3, 8}, {53, 72}, {54, 78}, {108, 152}, {1000, 1372}, {UINT_MAX, 79536431u * 74u + 28u + 4u}};  // wraps
    for (const auto& [size, estimate] : cases)
        EXPECT_EQ(CBase64::CalcEnecodedSize(size), estimate) << size;
}

// RFC 4648 10, and every digit.
TEST(Base64, WorkedTextsBothWays) {
    const std::pair<Bytes, Bytes> cases[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foobar", "Zm9vYmFy"},
        {Bytes("\0\x10\x83\x10\x51\x87\x20\x92\x8B\x30\xD3\x8F\x41\x14\x93\x51\x55\x97\x61\x96\x9B\x71\xD7\x9F\x82\x18"
               "\xA3\x92\x59\xA7\xA2\x9A\xAB\xB2\xDB\xAF\xC3\x1C\xB3\xD3\x5D\xB7\xE3\x9E\xBB\xF3\xDF\xBF"sv),
         Bytes(kDigits)}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(Encode(bytes, "in front"), "in front" + text);
        EXPECT_EQ(DecodeAll(CBase64::Decode, text), bytes);
    }
}

TEST(Base64, DecodesOddGroups) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"Zg==Zm8=Zm9v", "ffofoo"},            // texts joined end to end
        {"====", "\0"sv},                      // a byte whatever its digits are
        {"=AAA=", "\0\0\0\0"sv},               // padding in the first place has no bits
        {"Zg=v", "f"},                         // the fourth character is not looked at
        {"\n\r\n\nZm9v\nZm9v\r", "foofoo"},    //
        {"Zm9vZm8", "foofo"},                  // cut short
        {" Zm9", "\x01\x99\xBD"},              // a blank is the first character of its group
        {"Z\r\nv", "d\0\x2F"sv},               // no line end is passed over inside a group
        {"\x80\xFF\x7F*Zm9v", "\0\0\0foo"sv},  //
    };
    for (const auto& [text, bytes] : cases)
        EXPECT_EQ(DecodeAll(CBase64::Decode, text), bytes) << text;
    unsigned char group[3] = {};
    unsigned int written = 77;
    EXPECT_EQ(CBase64::Decode("Zm9v", group, UINT_MAX, written), 1) << "the capacity promises no buffer of its size";
}

TEST(Base64, EveryLengthComesBackOnEitherPath) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length <= 4000; length += length < 300 || length > 3060 ? 1 : 9) {
        const Bytes bytes = RandomBytes(random, length), text = Encode(bytes);
        ASSERT_EQ(text.size(), (length + 2) / 3 * 4);
        ASSERT_EQ(text, EncodePlain(bytes)) << length;
        ASSERT_EQ(LiteralBase64(text, text.size() + 2).bytes, bytes);
    }
}

// Good lines of several widths, with characters replaced by each byte in turn at places all over the text.
TEST(Base64, DecodesEveryTextByItsRules) {
    std::mt19937 random(2);
    for (std::size_t round = 0; round < 6000; ++round) {
        const Bytes good = Encode(RandomBytes(random, round % (round % 100 == 0 ? 5000 : 200)));
        const std::size_t widths[] = {4, 60, 72, 75, 76, 400};
        Bytes text = InLines(good, widths[random() % 6], round % 2 ? "\r\n" : "\n");
        text.resize(text.size() - random() % (text.size() + 1) % 5);
        if (!text.empty() && round % 3 > 0) text[random() % text.size()] = static_cast<char>(round & 0xFF);
        if (!text.empty() && round % 3 > 1) text[random() % text.size()] = "=\r\n!"[random() % 4];
        const unsigned int size = static_cast<unsigned int>(text.size());
        for (const unsigned int capacity : {size, size + 1, size + 2, size - (size > 0)})
            ASSERT_EQ(DecodeInto(CBase64::Decode, CString(text), capacity), LiteralBase64(text, capacity)) << text;
        ASSERT_EQ(Groups(text, false), Groups(text, true)) << text;
        const std::size_t steps[] = {1, 2, 3, 4, 5, 7, 63, 64, 74, 1001, 65536}, step = steps[random() % 11];
        ASSERT_EQ(DecodeInPieces(text, step), LiteralBase64(text, size + 1)) << text << " in steps of " << step;
    }
}

TEST(Base64, KnowsEachByteAtEachPlace) {
    for (std::size_t change = 0; change < std::size_t{256} * 64; ++change) {
        Bytes text(96, 'W');
        text[change % 64] = static_cast<char>(change / 64);
        ASSERT_EQ(Groups(text, false), Groups(text, true)) << change;
        ASSERT_EQ(DecodeAll(CBase64::Decode, text), LiteralBase64(text, 98).bytes) << change;
    }
}

void CheckEscapes(const Bytes& text) {
    ASSERT_EQ(DecodeAll(CQuotedPrint::Decode, text), LiteralEscapes(text, 99, '=', true).bytes);
    ASSERT_EQ(DecodeAll(CLanguage::HexDecode, text), LiteralEscapes(text, 99, '%', false).bytes);
}

TEST(HexEscapes, FollowTheirRulesForEveryPairAndEveryMix) {
    EXPECT_EQ(DecodeAll(CQuotedPrint::Decode, "=82=A0_%41\r\n\x82\xA0one=\r\ntwo"), "\x82\xA0_%41\r\n\x82\xA0onetwo");
    EXPECT_EQ(DecodeAll(CQuotedPrint::Decode, "one=4\r\ntwo=\n4==41=- =-1=0x="), "onetwo\4A\0\xFF\0"sv);
    EXPECT_EQ(DecodeAll(CLanguage::HexDecode, "a%20b=41%\r4%\r\nx%%41%4"), "a b=41\4\0xA"sv);
    for (int pair = 0; pair < 65536; ++pair)
        for (const char escape : {'=', '%'})
            CheckEscapes({'a', escape, static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF), 'b'});
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        Bytes text(random() % 12, '\0');
        for (char& c : text)
            c = "=%4a\r\n-z"[random() % 8];
        CheckEscapes(text);
    }
}

TEST(Decoders, KeepToTheirBuffer) {
    for (const Decoder decoder : {&CQuotedPrint::Decode, &CLanguage::HexDecode, &CBase64::Decode}) {
        unsigned int written = 77;
        EXPECT_EQ(decoder("", nullptr, 1, written), 0);
        EXPECT_EQ(written, 0u);
        EXPECT_EQ(DecodeInto(decoder, "abc", 2), (Decoded{0, ""}));
        EXPECT_EQ(DecodeInto(decoder, "", 0), (Decoded{1, ""}));
    }
}

}  // namespace
