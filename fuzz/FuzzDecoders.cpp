// The three decoders and the two conversions, on any bytes: nothing is written outside the capacity (each buffer has
// exactly that size), results follow a literal reading of the rules, and what was encoded decodes to itself.
#include <fuzz/Require.h>
#include <memory>
#include <string>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Stream.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>

namespace {

using Decoder = int (*)(const CString&, unsigned char*, unsigned int, unsigned int&);

struct Decoded {
    int result = 0;
    std::string bytes;
    friend bool operator==(const Decoded&, const Decoded&) = default;
};

Decoded Run(Decoder decode, const CString& text, unsigned int capacity) {
    const auto buffer = std::make_unique<unsigned char[]>(capacity);
    unsigned int written = 12345;
    Decoded out;
    out.result = decode(text, buffer.get(), capacity, written);
    Require(written <= capacity, "no more bytes than the capacity");
    out.bytes.assign(reinterpret_cast<const char*>(buffer.get()), written);
    return out;
}

// One character at a time; a character outside the alphabet counts as 0 bits, a missing one as padding.
Decoded LiteralBase64(std::string_view text, std::size_t capacity) {
    static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto at = [&](std::size_t i) { return i < text.size() ? text[i] : '='; };
    const auto bits = [&](std::size_t i) {
        const std::size_t digit = kDigits.find(at(i));
        return digit == std::string_view::npos ? 0u : static_cast<unsigned int>(digit);
    };
    if (capacity < text.size()) return {};
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        if (capacity < out.size() + 3) return {};
        if (text[i] == '\r' || text[i] == '\n') {
            ++i;
            continue;
        }
        out += static_cast<char>(bits(i) << 2 | bits(i + 1) >> 4);
        if (at(i + 2) != '=') out += static_cast<char>((bits(i + 1) << 4 | bits(i + 2) >> 2) & 0xFF);
        if (at(i + 2) != '=' && at(i + 3) != '=') out += static_cast<char>((bits(i + 2) << 6 | bits(i + 3)) & 0xFF);
        i += 4;
    }
    return {1, out};
}

// strtoul itself decides about the digits: the reference is the C library's.
Decoded LiteralEscapes(std::string_view text, std::size_t capacity, char escape, bool softLineBreaks) {
    if (capacity < text.size()) return {};
    std::string out;
    char digits[3] = {};
    int count = -1;  // -1: outside an escape
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == escape) {
            count = 0;
        } else if (count < 0) {
            out += c;
        } else if (softLineBreaks && c == '\r') {
            count = -1;
            ++i;
        } else {
            digits[count++] = c;
            if (count == 2) out += static_cast<char>(std::strtoul(digits, nullptr, 16) & 0xFF);
            if (count == 2) count = -1;
        }
    }
    return {1, out};
}

void CheckDecoders(const CString& text, unsigned int extra) {
    const unsigned int length = LengthOf(text),
                       capacities[] = {length + 1, length, length - (length > 0), length + extra};
    for (const unsigned int capacity : capacities) {
        Require(Run(CBase64::Decode, text, capacity) == LiteralBase64(text.View(), capacity),
                "Base64 as its rules say");
        Require(Run(CQuotedPrint::Decode, text, capacity) == LiteralEscapes(text.View(), capacity, '=', true),
                "quoted-printable as its rules say");
        Require(Run(CLanguage::HexDecode, text, capacity) == LiteralEscapes(text.View(), capacity, '%', false),
                "percent-hex as its rules say");
    }
}

void CheckStream(const CString& text, std::size_t step) {
    CBase64Stream stream;
    Decoded out;
    for (std::string_view rest = text.View(); !rest.empty();) {
        const std::string_view piece = rest.substr(0, step);
        const auto buffer = std::make_unique<unsigned char[]>(CBase64Stream::MaxBytes(piece.size()));
        out.bytes.append(reinterpret_cast<const char*>(buffer.get()), stream.Decode(piece, buffer.get()));
        rest.remove_prefix(piece.size());
    }
    unsigned char last[CBase64Stream::kLastBytes];
    std::size_t written = 0;
    out.result = stream.Finish(last, written);
    if (out.result == 0) out.bytes.clear();
    out.bytes.append(reinterpret_cast<const char*>(last), written);
    Require(out == LiteralBase64(text.View(), text.View().size() + 1), "pieces decode as the whole");
}

void CheckEncoder(const CString& text) {
    CString encoded;
    const std::string bytes(text.View());
    Require(CBase64::Encode(reinterpret_cast<const unsigned char*>(bytes.data()), LengthOf(text), encoded) == 1,
            "encoding cannot fail");
    Require(Run(CBase64::Decode, encoded, LengthOf(encoded) + 1) == Decoded{1, bytes}, "encoded bytes come back");
}

CString FromWire(const CString& text) {
    CString out;
    CLanguage::JIS_SJIS(text, LengthOf(text), out);
    return out;
}

void CheckConversions(const CString& text) {
    const CString back = FromWire(text);
    Require(LengthOf(back) <= LengthOf(text), "a conversion from the wire grows no text");
    Require(back.View().find_first_of(std::string_view("\x1b\0", 2)) == std::string_view::npos, "no ESC and no NUL");
    CString wire;
    CLanguage::SJIS_JIS(text, LengthOf(text), wire);
    // What seven bits brought holds only characters that the wire has, so it survives the way there and back.
    for (const char c : text.View())
        if (static_cast<unsigned char>(c) >= 0x80) return;
    wire.Empty();
    CLanguage::SJIS_JIS(back, LengthOf(back), wire);
    Require(FromWire(wire) == back, "the wire's own characters come back");
}

void CheckCut(const CString& text, unsigned int most) {
    CString head;
    CLanguage::CutSJIS(text, LengthOf(text), most, head);
    if (most >= LengthOf(text)) return Require(head == CString(text.View().data()), "the whole text up to its NUL");
    Require(head.View() == text.View().substr(0, LengthOf(head)), "a head of the text");
    Require(LengthOf(head) == most || LengthOf(head) + 1 == most, "at most one byte shorter than asked for");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const CString text(ViewOf(data + 1, size - 1));
    CheckDecoders(text, data[0]);
    CheckStream(text, 1 + data[0]);
    CheckEncoder(text);
    CheckConversions(text);
    CheckCut(text, data[0]);
    return 0;
}
