// The texts of a message: encoded words, the text part and Base64 lines.
#include <algorithm>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Groups.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

constexpr char kWordHead[] = "=?iso-2022-jp?B?";
constexpr char kWordTail[] = "?=";
constexpr int kWordFrame = sizeof kWordHead - 1 + sizeof kWordTail - 1;
constexpr int kLineLimit = 76;          // RFC 2047 2
constexpr int kContinuationPrefix = 1;  // TAB

// Progress hears of every ten lines, so that a small mail does not spend its time on messages.
constexpr unsigned int kLinesPerCallback = 10;

// Bytes of Shift-JIS whose word fits the room that a line leaves behind used bytes: escape sequences and Base64 make
// about three of one. A word takes a whole character in any case, or a long prefix would never let it go on.
unsigned int PieceLimit(int lineLimit, int used) {
    return static_cast<unsigned int>(std::max(2, static_cast<int>((lineLimit - used - kWordFrame) * 0.3)));
}

const unsigned char* Bytes(const CString& text) {
    return reinterpret_cast<const unsigned char*>(static_cast<const char*>(text));
}

unsigned int Size(const CString& text) {
    return static_cast<unsigned int>(text.View().size());
}

}  // namespace

CString CEMailWriter::EncodeFieldValue(const CString& value, int prefixLength) {
    CString text(static_cast<const char*>(value));  // a value that holds a NUL ends at it
    if (CLanguage::IsJapanese(text) == 0) return text;
    CString result;
    unsigned int limit = PieceLimit(kLineLimit, prefixLength);
    for (unsigned int at = 0; at < Size(text);) {
        // A string of its own: the conversion looks at the byte behind its input, and a voiced mark that the next word
        // begins with would be used twice.
        CString piece;
        CLanguage::CutSJIS(static_cast<const char*>(text) + at, Size(text) - at, limit, piece);
        CString encoded;
        Encode(Bytes(piece), Size(piece), wire::kBase64, wire::kIso2022Jp, encoded);
        result += kWordHead;
        result += encoded;
        result += kWordTail;
        at += Size(piece);
        if (at < Size(text)) result += "\r\n\t";
        limit = PieceLimit(kLineLimit, kContinuationPrefix);
    }
    return result;
}

int CEMailWriter::Encode(const unsigned char* data, unsigned int length, const CString& encoding,
                         const CString& charset, CString& out) {
    if (platform::mbsicmp(charset, wire::kIso2022Jp) != 0) return CBase64::Encode(data, length, out);
    CString converted;
    CLanguage::SJIS_JIS(reinterpret_cast<const char*>(data), length, converted);
    if (platform::mbsicmp(encoding, "B") == 0 || platform::mbsicmp(encoding, wire::kBase64) == 0)
        return CBase64::Encode(Bytes(converted), Size(converted), out);
    out = converted;
    return 1;
}

int CEMailWriter::WriteBody(const CString& body, CString& error) {
    const bool japanese = CLanguage::IsJapanese(body) != 0;
    int status = 0;
    if (japanese) {
        CStringArray params;
        params.SetAtGrow(0, CString("charset=") + wire::kIso2022Jp);
        status = WriteFieldValue(wire::kContentType, wire::kTextPlain, params) != 0 &&
                 WriteFieldValue(wire::kContentTransferEncoding, wire::kBase64) != 0;
    } else {
        status = WriteFieldValue(wire::kContentType, wire::kTextPlain);
    }
    if (status != 0) {
        WriteBetween(wire::kCrLf);
        status = japanese ? WriteJapaneseText(body) : WritePlainText(body);
    }
    if (status == 0) error = texts::kBodyFailed;
    return status;
}

// QUIRK: bytes above 0x7F that are no Japanese go out raw, and no line is wrapped (RFC 2045 2.7, 6.2).
int CEMailWriter::WritePlainText(const CString& text) {
    if (m_pStream->WriteString(text) == 0) return 0;
    return m_progress.Callback(Size(text)) != 0;
}

int CEMailWriter::WriteJapaneseText(const CString& text) {
    CString converted;
    CLanguage::SJIS_JIS(text, Size(text), converted);
    return WriteBase64(Bytes(converted), Size(converted));
}

int CEMailWriter::WriteBase64(const unsigned char* data, unsigned int length) {
    unsigned int lines = 0;
    for (; length >= wire::kBase64LineBytes; length -= wire::kBase64LineBytes, data += wire::kBase64LineBytes) {
        if (WriteBase64Line(data, wire::kBase64LineBytes) == 0) return 0;
        if (++lines < kLinesPerCallback) continue;
        if (m_progress.Callback(lines * wire::kBase64LineCharacters) == 0) return 0;
        lines = 0;
    }
    return length == 0 ? 1 : WriteBase64Line(data, length);
}

// A line on the stack: a string of its own for each costs as much as the encoding.
int CEMailWriter::WriteBase64Line(const unsigned char* data, unsigned int length) {
    char line[wire::kBase64LineCharacters + 1];
    line[base64::EncodeGroups(data, length, line)] = 0;
    // The line end goes out behind a failed line too: a stream that recovers starts the next one at a line top.
    const int text = m_pStream->WriteString(line);
    const int end = m_pStream->WriteString(wire::kCrLf);
    return text != 0 && end != 0;
}
