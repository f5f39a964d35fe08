// The transfer codecs: Base64 both ways, padding and short groups, buffer limits, decoding in pieces; quoted-printable
// and percent-hex with good and bad digits.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Groups.h>
#include <mailengine/encoding/Base64Stream.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>

namespace {

using Bytes = std::string;
using namespace std::string_view_literals;

struct Decoded {
    int result = -1;
    unsigned int written = 77;
    Bytes bytes;
    friend bool operator==(const Decoded&, const Decoded&) = default;
};

void PrintTo(const Decoded& decoded, std::ostream* out) {
    *out << decoded.result << ", " << decoded.written << " " << testing::PrintToString(decoded.bytes);
}

using Decoder = int (*)(const CString&, unsigned char*, unsigned int, unsigned int&);

// Decodes into a buffer of exactly capacity bytes, which the sanitizer watches, and checks that no byte behind the
// result was touched.
Decoded Decode(Decoder decoder, std::string_view text, unsigned int capacity) {
    const auto buffer = std::make_unique<unsigned char[]>(capacity);
    std::fill_n(buffer.get(), capacity, static_cast<unsigned char>(0xEE));
    Decoded decoded;
    decoded.result = decoder(CString(text), buffer.get(), capacity, decoded.written);
    if (decoded.result == 0) return decoded;
    for (std::size_t at = decoded.written; at < capacity; ++at)
        EXPECT_EQ(buffer[at], 0xEE) << "touched at " << at << " behind " << decoded.written;
    decoded.bytes.assign(buffer.get(), buffer.get() + decoded.written);
    return decoded;
}

Bytes DecodeAll(Decoder decoder, std::string_view text) {
    const Decoded decoded = Decode(decoder, text, static_cast<unsigned int>(text.size()) + 2);
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

unsigned ValueOf(char c) {
    const std::size_t at = kDigits.find(c);
    return at == std::string_view::npos ? 0 : static_cast<unsigned>(at);
}

// The decoder's rules one by one; a missing character of the last group counts as padding.
Decoded LiteralDecode(std::string_view text, std::size_t capacity) {
    Decoded out{0, 0, {}};
    if (capacity < text.size()) return out;
    for (std::size_t i = 0; i < text.size();) {
        if (capacity < out.bytes.size() + 3) return {0, 0, {}};
        if (text[i] == '\r' || text[i] == '\n') {
            ++i;
            continue;
        }
        const Bytes group = Bytes(text.substr(i, 4)) + "===";
        unsigned bits = 0;
        for (std::size_t n = 0; n < 4; ++n)
            bits = bits << 6 | ValueOf(group[n]);
        out.bytes += static_cast<char>(bits >> 16);
        if (group[2] != '=') out.bytes += static_cast<char>(bits >> 8 & 0xFF);
        if (group[2] != '=' && group[3] != '=') out.bytes += static_cast<char>(bits & 0xFF);
        i += 4;
    }
    return {1, static_cast<unsigned int>(out.bytes.size()), out.bytes};
}

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

// Decodes text in pieces of step characters, each into a buffer of just the promised room.
Decoded DecodeInPieces(std::string_view text, std::size_t step) {
    CBase64Stream stream;
    Decoded decoded{0, 0, {}};
    for (std::size_t at = 0; at < text.size(); at += step) {
        const Bytes piece(text.substr(at, step));
        std::vector<unsigned char> buffer(CBase64Stream::MaxBytes(piece.size()));
        buffer.resize(stream.Decode(piece, buffer.data()));
        decoded.bytes.append(buffer.begin(), buffer.end());
    }
    std::vector<unsigned char> buffer(CBase64Stream::kLastBytes);
    std::size_t last = 0;
    decoded.result = stream.Finish(buffer.data(), last);
    decoded.bytes.append(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(last));
    decoded.written = static_cast<unsigned int>(decoded.bytes.size());
    return decoded;
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
        ASSERT_EQ(LiteralDecode(text, text.size() + 2).bytes, bytes);
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
            ASSERT_EQ(Decode(CBase64::Decode, text, capacity), LiteralDecode(text, capacity)) << text;
        ASSERT_EQ(Groups(text, false), Groups(text, true)) << text;
        const std::size_t steps[] = {1, 2, 3, 4, 5, 7, 63, 64, 74, 1001, 65536}, step = steps[random() % 11];
        ASSERT_EQ(DecodeInPieces(text, step), LiteralDecode(text, size + 1)) << text << " in steps of " << step;
    }
}

TEST(Base64, KnowsEachByteAtEachPlace) {
    for (std::size_t change = 0; change < std::size_t{256} * 64; ++change) {
        Bytes text(96, 'W');
        text[change % 64] = static_cast<char>(change / 64);
        ASSERT_EQ(Groups(text, false), Groups(text, true)) << change;
        ASSERT_EQ(DecodeAll(CBase64::Decode, text), LiteralDecode(text, 98).bytes) << change;
    }
}

// Two digits are read as strtoul reads them in the C locale: blanks, signs and "0x" in front are taken.
TEST(HexEscapes, ReadTheirDigitsLikeANumber) {
    for (int pair = 0; pair < 65536; ++pair) {
        const char digits[] = {static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF), 0};
        const Bytes behind{digits[0], digits[1], 'b'};
        const Bytes expected{'a', static_cast<char>(std::strtoul(digits, nullptr, 16) & 0xFF), 'b'};
        if (behind.find_first_of("=%\r") != Bytes::npos) continue;
        ASSERT_EQ(DecodeAll(CQuotedPrint::Decode, "a=" + behind), expected) << pair;
        ASSERT_EQ(DecodeAll(CLanguage::HexDecode, "a%" + behind), expected) << pair;
    }
}

TEST(HexEscapes, WorkedTexts) {
    const std::tuple<Decoder, std::string_view, std::string_view> cases[] = {
        {CQuotedPrint::Decode, "=82=A0_%41\r\n\x82\xA0", "\x82\xA0_%41\r\n\x82\xA0"},
        {CQuotedPrint::Decode, "one=\r\ntwo", "onetwo"},
        {CQuotedPrint::Decode, "one=\rXtwo", "onetwo"},    // whatever stands behind the CR goes
        {CQuotedPrint::Decode, "one=4\r\ntwo", "onetwo"},  // a CR ends an escape wherever it stands
        {CQuotedPrint::Decode, "one=\r", "one"},
        {CQuotedPrint::Decode, "one=\n4two", "one\4two"},  // a bare LF is the first digit
        {CQuotedPrint::Decode, "==41=4=41", "AA"},
        {CQuotedPrint::Decode, "one=", "one"},
        {CQuotedPrint::Decode, "one=4", "one"},
        {CLanguage::HexDecode, "a%20b=41", "a b=41"},
        {CLanguage::HexDecode, "%\r4%\r\nx", "\4\0x"sv},
        {CLanguage::HexDecode, "%%41%4", "A"},
    };
    for (const auto& [decoder, text, bytes] : cases)
        EXPECT_EQ(DecodeAll(decoder, text), bytes) << text;
}

TEST(Decoders, KeepToTheirBuffer) {
    for (const Decoder decoder : {&CQuotedPrint::Decode, &CLanguage::HexDecode, &CBase64::Decode}) {
        unsigned int written = 77;
        EXPECT_EQ(decoder("", nullptr, 1, written), 0);
        EXPECT_EQ(written, 0u);
        EXPECT_EQ(Decode(decoder, "abc", 2), (Decoded{0, 0, ""}));
        EXPECT_EQ(Decode(decoder, "", 0), (Decoded{1, 0, ""}));
    }
}

}  // namespace
