// The three decoders and the two conversions, on any bytes: nothing is written outside the capacity (each buffer has
// exactly that size), results follow a literal reading of the rules, and what was encoded decodes to itself.
#include <string>
#include <tests/models/LiteralConversions.h>
#include <tests/models/LiteralDecoders.h>
#include <tests/models/Require.h>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>

namespace {

void CheckDecoders(const CString& text, unsigned int extra) {
    const unsigned int length = LengthOf(text),
                       capacities[] = {length + 1, length, length - (length > 0), length + extra};
    for (const unsigned int capacity : capacities) {
        Require(DecodeInto(CBase64::Decode, text, capacity) == LiteralBase64(text.View(), capacity),
                "Base64 as its rules say");
        Require(DecodeInto(CQuotedPrint::Decode, text, capacity) == LiteralEscapes(text.View(), capacity, '=', true),
                "quoted-printable as its rules say");
        Require(DecodeInto(CLanguage::HexDecode, text, capacity) == LiteralEscapes(text.View(), capacity, '%', false),
                "percent-hex as its rules say");
    }
}

void CheckStream(const CString& text, std::size_t step) {
    Require(DecodeInPieces(text.View(), step) == LiteralBase64(text.View(), text.View().size() + 1),
            "pieces decode as the whole");
}

void CheckEncoder(const CString& text) {
    CString encoded;
    const std::string bytes(text.View());
    Require(CBase64::Encode(reinterpret_cast<const unsigned char*>(bytes.data()), LengthOf(text), encoded) == 1,
            "encoding cannot fail");
    Require(DecodeInto(CBase64::Decode, encoded, LengthOf(encoded) + 1) == Decoded{1, bytes},
            "encoded bytes come back");
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
    const std::string bytes(text.View());
    Require(back.View() == LiteralToShiftJis(bytes), "a conversion from the wire as its rules say");
    Require(wire.View() == LiteralToJis(bytes, ""), "a conversion to the wire as its rules say");
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
