// The transfer codecs: Base64 both ways, padding and short groups, buffer limits, decoding in pieces; quoted-printable
// and percent-hex with good and bad digits.
#include <algorithm>
#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
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
        const auto at = [&](std::size_t n) { return i + n < text.size() ? text[i + n] : '='; };
        const unsigned bits = ValueOf(at(0)) << 18 | ValueOf(at(1)) << 12 | ValueOf(at(2)) << 6 | ValueOf(at(3));
        out.bytes += static_cast<char>(bits >> 16);
        if (at(2) != '=') out.bytes += static_cast<char>(bits >> 8 & 0xFF);
        if (at(2) != '=' && at(3) != '=') out.bytes += static_cast<char>(bits & 0xFF);
        i += 4;
    }
    return {1, static_cast<unsigned int>(out.bytes.size()), out.bytes};
}

Bytes LiteralEncode(const Bytes& bytes) {
    Bytes text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        unsigned bits = 0;
        for (std::size_t n = 0; n < 3; ++n)
            bits = bits << 8 | (at + n < bytes.size() ? static_cast<unsigned char>(bytes[at + n]) : 0u);
        for (int digit = 0; digit < 4; ++digit)
            text += at + static_cast<std::size_t>(digit) > bytes.size() ? '=' : kDigits[bits >> (18 - 6 * digit) & 63];
    }
    return text;
}

Bytes RandomBytes(std::mt19937& random, std::size_t length) {
    Bytes bytes(length, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random() & 0xFF);
    return bytes;
}

Bytes InLines(std::string_view text, std::size_t width, std::string_view lineEnd) {
    Bytes lines;
    for (std::size_t at = 0; at < text.size(); at += width)
        lines.append(text.substr(at, width)).append(lineEnd);
    return lines;
}

// What the plain path, which any machine has, makes of whole groups.
Bytes DecodePlain(std::string_view text) {
    std::vector<unsigned char> buffer(text.size() + 3);
    const base64::Progress done = base64::DecodePlain(text, buffer.data(), buffer.size());
    return Bytes(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(done.made));
}

Bytes DecodeFast(std::string_view text) {
    std::vector<unsigned char> buffer(text.size() + 3);
    const base64::Progress done = base64::DecodeGroups(text, buffer.data(), buffer.size());
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
    const auto keep = [&](const std::vector<unsigned char>& buffer, std::size_t made) {
        decoded.bytes.append(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(made));
    };
    for (std::size_t at = 0; at < text.size(); at += step) {
        const std::string piece(text.substr(at, step));
        std::vector<unsigned char> buffer(CBase64Stream::MaxBytes(piece.size()));
        keep(buffer, stream.Decode(piece, buffer.data()));
    }
    std::vector<unsigned char> buffer(CBase64Stream::kLastBytes);
    std::size_t last = 0;
    decoded.result = stream.Finish(buffer.data(), last);
    keep(buffer, last);
    decoded.written = static_cast<unsigned int>(decoded.bytes.size());
    return decoded;
}

TEST(Base64, EstimatesItsSize) {
    const unsigned int cases[][2] = {{0, 4},       {1, 4},
                                     {2, 4},       {3, 8},
                                     {4, 8},       {5, 8},
                                     {6, 12},      {53, 72},
                                     {54, 78},     {55, 78},
                                     {57, 82},     {108, 152},
                                     {1000, 1372}, {UINT_MAX, 79536431u * 74u + 28u + 4u}};  // wraps
    for (const auto& [size, estimate] : cases)
        EXPECT_EQ(CBase64::CalcEnecodedSize(size), estimate) << size;
}

// RFC 4648 10, and every digit.
TEST(Base64, WorkedTextsBothWays) {
    const struct {
        Bytes bytes, text;
    } cases[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {Bytes("\0\x10\x83\x10\x51\x87\x20\x92\x8B\x30\xD3\x8F\x41\x14\x93\x51\x55\x97\x61\x96\x9B\x71\xD7\x9F\x82\x18"
               "\xA3\x92\x59\xA7\xA2\x9A\xAB\xB2\xDB\xAF\xC3\x1C\xB3\xD3\x5D\xB7\xE3\x9E\xBB\xF3\xDF\xBF"sv),
         Bytes(kDigits)},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Encode(one.bytes), one.text);
        EXPECT_EQ(Encode(one.bytes, "in front"), "in front" + one.text);
        EXPECT_EQ(DecodeAll(CBase64::Decode, one.text), one.bytes);
    }
}

TEST(Base64, DecodesOddGroups) {
    const struct {
        std::string_view text, bytes;
    } cases[] = {
        {"Zg==Zm8=Zm9v", "ffofoo"},            // texts joined end to end
        {"====", "\0"sv},                      // a byte whatever its digits are
        {"=AAA=", "\0\0\0\0"sv},               // padding in the first place has no bits
        {"Zg=v", "f"},                         // the fourth character is not looked at
        {"Zm9v\r\nZm9v", "foofoo"},            //
        {"\n\r\n\nZm9v\nZm9v\r", "foofoo"},    //
        {"Z", "d"},                            // cut short
        {"Zg", "f"},                           //
        {"Zm8", "fo"},                         //
        {"Zg=", "f"},                          //
        {"Zm9vZm8", "foofo"},                  //
        {" Zm9", "\x01\x99\xBD"},              // a blank is the first character of its group
        {"Z\r\nv", "d\0\x2F"sv},               // no line end is passed over inside a group
        {"\x80\xFF\x7F*Zm9v", "\0\0\0foo"sv},  //
    };
    for (const auto& one : cases)
        EXPECT_EQ(DecodeAll(CBase64::Decode, one.text), one.bytes) << one.text;
}

TEST(Base64, KeepsToItsBuffer) {
    unsigned int written = 77;
    EXPECT_EQ(CBase64::Decode("", nullptr, 10, written), 0);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(Decode(CBase64::Decode, "Zm9v", 3), (Decoded{0, 0, ""}));
    EXPECT_EQ(Decode(CBase64::Decode, "Zm9v", 4), (Decoded{1, 3, "foo"}));
    EXPECT_EQ(Decode(CBase64::Decode, "Z", 2), (Decoded{0, 0, ""}));
    EXPECT_EQ(Decode(CBase64::Decode, "\r", 2), (Decoded{0, 0, ""}));
    EXPECT_EQ(Decode(CBase64::Decode, "Zm9vY", 5), (Decoded{0, 0, ""}));
    EXPECT_EQ(Decode(CBase64::Decode, "Zm9v\n", 5), (Decoded{0, 0, ""}));
    EXPECT_EQ(Decode(CBase64::Decode, "Zm9vY", 6), (Decoded{1, 4, "foo`"}));
    unsigned char group[3] = {};
    EXPECT_EQ(CBase64::Decode("Zm9v", group, UINT_MAX, written), 1);
    EXPECT_EQ(written, 3u);
}

TEST(Base64, EncodesEveryLengthByItsRules) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length <= 300; ++length) {
        const Bytes bytes = RandomBytes(random, length);
        ASSERT_EQ(Encode(bytes), LiteralEncode(bytes)) << length;
        ASSERT_EQ(EncodePlain(bytes), LiteralEncode(bytes)) << length;
    }
    for (const std::size_t length : {3071u, 3072u, 3073u, 100000u}) {
        const Bytes bytes = RandomBytes(random, length);
        ASSERT_EQ(Encode(bytes), LiteralEncode(bytes)) << length;
    }
}

// Good lines of several widths, with one character replaced by each byte in turn at places all over the text.
TEST(Base64, DecodesEveryTextByItsRules) {
    std::mt19937 random(2);
    for (std::size_t length = 0; length <= 300; ++length)
        for (const std::size_t width : {4u, 60u, 72u, 75u, 76u, 400u}) {
            Bytes text = InLines(LiteralEncode(RandomBytes(random, length)), width, length % 2 ? "\r\n" : "\n");
            text.resize(text.size() - random() % (text.size() + 1) % 5);
            const unsigned int capacity = static_cast<unsigned int>(text.size() + length % 3);
            ASSERT_EQ(Decode(CBase64::Decode, text, capacity), LiteralDecode(text, capacity)) << text;
            if (text.empty()) continue;
            text[random() % text.size()] = static_cast<char>(length & 0xFF);
            text[random() % text.size()] = "=\r\n!"[random() % 4];
            ASSERT_EQ(Decode(CBase64::Decode, text, capacity), LiteralDecode(text, capacity)) << text;
            ASSERT_EQ(DecodeAll(CBase64::Decode, text), LiteralDecode(text, text.size() + 2).bytes) << text;
            ASSERT_EQ(DecodeFast(text), DecodePlain(text)) << text;
        }
}

TEST(Base64, KnowsEachByteAtEachPlace) {
    const Bytes good = InLines(LiteralEncode(Bytes(96, '\x5A')), 72, "\r\n");
    for (int byte = 0; byte < 256; ++byte)
        for (std::size_t place = 0; place < 40; ++place) {
            Bytes text = good;
            text[place] = static_cast<char>(byte);
            ASSERT_EQ(DecodeAll(CBase64::Decode, text), LiteralDecode(text, text.size() + 2).bytes) << byte;
        }
}

TEST(Base64, DecodesInPiecesOfAnySize) {
    std::mt19937 random(3);
    std::vector<Bytes> texts{"", "Z", "\r", "Zg", "Zm8", "Zg==Zm8=", "Zm9v\r\n=", "\r\n\r\nZ\r\n"};
    for (const std::size_t length : {1u, 52u, 53u, 54u, 1000u, 5000u}) {
        texts.push_back(InLines(LiteralEncode(RandomBytes(random, length)), 72, "\r\n"));
        texts.push_back(texts.back());
        texts.back()[length / 2] = '=';
        texts.back().pop_back();
    }
    for (const Bytes& text : texts)
        for (const std::size_t step : {1u, 2u, 3u, 4u, 5u, 7u, 63u, 64u, 74u, 1001u, 65536u}) {
            const Decoded whole = Decode(CBase64::Decode, text, static_cast<unsigned int>(text.size() + 1));
            ASSERT_EQ(DecodeInPieces(text, step), whole) << text << " in steps of " << step;
        }
}

// Digits and what they give, the same for "=" and for "%".
TEST(HexEscapes, ReadTheirDigitsLikeANumber) {
    const struct {
        std::string_view digits;
        int byte;
    } cases[] = {{"41", 0x41},
                 {"4a", 0x4A},
                 {"4A", 0x4A},
                 {"fF", 0xFF},
                 {"00", 0},
                 {"G1", 0},
                 {"4G", 4},
                 {"-1", 0xFF},
                 {"-a", 0xF6},
                 {"+4", 4},
                 {" 4", 4},
                 {"\t4", 4},
                 {"\n4", 4},
                 {"\v4", 4},
                 {"\f4", 4},
                 {"4 ", 4},
                 {"- ", 0},
                 {"--", 0},
                 {"  ", 0},
                 {"+-", 0},
                 {"-0", 0},
                 {"0x", 0},
                 {"0X", 0},
                 {"x1", 0},
                 {"\0004"sv, 0},
                 {"4\0"sv, 4},
                 {"\xA0"
                  "4",
                  0},
                 {"4\xFF", 4}};
    for (const auto& one : cases) {
        const Bytes expected{'a', static_cast<char>(one.byte), 'b'};
        EXPECT_EQ(DecodeAll(CQuotedPrint::Decode, "a=" + Bytes(one.digits) + "b"), expected) << one.digits;
        EXPECT_EQ(DecodeAll(CLanguage::HexDecode, "a%" + Bytes(one.digits) + "b"), expected) << one.digits;
    }
}

TEST(HexEscapes, WorkedTexts) {
    const struct {
        Decoder decoder;
        std::string_view text, bytes;
    } cases[] = {
        {CQuotedPrint::Decode, "", ""},
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
    for (const auto& one : cases)
        EXPECT_EQ(DecodeAll(one.decoder, one.text), one.bytes) << one.text;
}

TEST(HexEscapes, KeepToTheirBuffer) {
    for (const Decoder decoder : {&CQuotedPrint::Decode, &CLanguage::HexDecode}) {
        unsigned int written = 77;
        EXPECT_EQ(decoder("", nullptr, 1, written), 0);
        EXPECT_EQ(written, 0u);
        EXPECT_EQ(Decode(decoder, "abc", 2), (Decoded{0, 0, ""}));
        EXPECT_EQ(Decode(decoder, "abc", 3), (Decoded{1, 3, "abc"}));
        EXPECT_EQ(Decode(decoder, "", 0), (Decoded{1, 0, ""}));
    }
}

}  // namespace
