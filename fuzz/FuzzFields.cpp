// Every field operation of the parser, on the bytes as they are and on the same bytes folded onto what mail is made of.
#include <memory>
#include <string>
#include <tests/models/Require.h>

#include <mailengine/parser/EMailPerser.h>

namespace {

// The parser's protected operations, each run on one text with what holds for any text.
class CFields : public CEMailPerser {
public:
    void Run(const CString& text, int start) {
        ScanFields(text, start);
        ScanParts(text, start);
        SplitAddresses(text);
        DecodeValues(text);
        ScanHeader(text, start);
    }

private:
    static void RequireInside(int offset, const CString& text) {
        Require(offset >= -1 && offset <= text.GetLength(), "an offset lies in the text, or is -1");
    }

    void ScanFields(const CString& text, int start) {
        for (const char* name : {"To", "Content-Type", "Q"}) {
            CString value("old");
            int next = -7;
            const int top = FindTopOfLine(text, start, CString(name) + ":");
            RequireInside(top, text);
            const int found = FindField(text, start, name, value, &next);
            Require(found == 0 || next > top, "behind a field lies more than its top");
            Require(top != -1 || (value == "old" && next == -7), "a field that is not there changes nothing");
        }
    }

    void ScanParts(const CString& text, int start) {
        const int empty = FindEmptyLine(text, start);
        RequireInside(empty, text);
        Require(empty == -1 || text.Mid(empty, 2) == "\r\n", "an empty line is a CRLF");
        int delimiter = 0, lineEnd = -7, last = -7;
        if (FindNextBoundary(text, start, text.Left(3), delimiter, lineEnd, &last) == 0)
            return Require(delimiter == -1 && lineEnd == -7 && last == -7, "no delimiter, no offsets");
        Require(delimiter >= start && lineEnd > delimiter, "a delimiter has its line");
        RequireInside(lineEnd, text);
    }

    void SplitAddresses(const CString& text) {
        CString item;
        for (int at = 0, next = 0; (next = NextAddress(text, at, item)) != -1; at = next) {
            Require(next > at && next <= text.GetLength(), "the split goes forward and stays in the text");
            Require(text.View().substr(static_cast<std::size_t>(at)).find(item.View()) != std::string_view::npos,
                    "an item is a piece of the text");
            CAddress address;
            address.FromText(item);
        }
    }

    void DecodeValues(const CString& text) {
        const CString decoded = DecodeFieldValue(text);
        Require(decoded.GetLength() <= text.GetLength(), "decoding grows no value");
        Require(text.Find("=?") != -1 || decoded == text, "without a word nothing changes");
        for (const char* name : {"name", "boundary", "a"}) {
            Require(GetAttrValue(text, name).GetLength() <= text.GetLength(), "a parameter is no longer than all");
            (void)GetAttrValue_MultiLine(text, name);
        }
        for (const char* encoding : {"B", "quoted-printable", "h", "7bit"})
            for (const char* charset : {"ISO-2022-JP", "us-ascii"})
                DecodeInto(text, encoding, charset);
    }

    // Any size may come, also one below the rule of a byte more than the text.
    void DecodeInto(const CString& text, const char* encoding, const char* charset) {
        for (const unsigned int size : {LengthOf(text) + 1, LengthOf(text), 1u}) {
            const auto buffer = std::make_unique<unsigned char[]>(size);
            unsigned int written = 0;
            const int result = Decode(text, encoding, charset, buffer.get(), size, written);
            Require(written <= size, "no more bytes than the buffer has");
            Require(result == 0 || size <= LengthOf(text) || buffer[written] == 0, "a NUL behind the bytes");
        }
    }

    void ScanHeader(const CString& text, int bodyTop) {
        CStringArray from, to, cc;
        CString messageId, references, subject, date, summary, type, parameters;
        Require(PerseHeaderFields(text, bodyTop, 0, from, to, cc, messageId, references, subject, date) == 1,
                "the header scan cannot fail");
        MakeOriginalSummary(from, to, cc, subject, date, cc, summary);
        Require(summary.GetLength() >= 48, "four labels and their line ends");
        Require(GetContentType(text, bodyTop, type, parameters, nullptr) == 1, "there is always a type");
    }
};

CString Folded(std::string_view bytes) {
    static constexpr std::string_view kAlphabet = "=?-:;\"<>@, \t\r\n\x1b$(BJabQ01*'%\\";
    std::string text(bytes);
    for (char& c : text)
        c = kAlphabet[static_cast<unsigned char>(c) % kAlphabet.size()];
    return CString(std::move(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view bytes = ViewOf(data + 1, size - 1);
    CFields fields;
    for (const int start : {0, static_cast<int>(data[0])}) {
        fields.Run(CString(bytes), start);
        fields.Run(Folded(bytes), start);
    }
    return 0;
}
