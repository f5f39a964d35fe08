// CLanguage: tests on Shift-JIS bytes, the conversions between Shift-JIS (code page 932) and ISO-2022-JP (RFC 1468),
// and the percent-hex decoder of extended parameters. Stateless; any thread, any number of calls at once.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

class MAILENGINE_API CLanguage {
public:
    CLanguage() = delete;

    // 1 if any byte of text is a lead byte or a half-width kana, else 0. Byte by byte, so text that is not Shift-JIS
    // counts by its bytes; an empty text gives 0. It chooses between the plain and the Japanese route of the writer.
    static int IsJapanese(const CString& text);

    // Non-zero if c is a lead byte: 0x81 to 0x9F and 0xE0 to 0xFC.
    static int IsJSjisKanji(char c);
    // Non-zero if c is a half-width kana: 0xA1 to 0xDF.
    static int IsHankakuKana(char c);

    // Converts len bytes of Shift-JIS to ISO-2022-JP and appends the result to out, which keeps its bytes in front.
    // Half-width kana become full-width ones, joined with a voiced mark behind them; a character that JIS X 0208
    // cannot hold is dropped. The text ends in single-byte mode, and so does every line of it (RFC 1468). src must be
    // readable up to one byte behind len: that byte is taken for a trail byte or a voiced mark. src must not lie
    // inside out.
    static void SJIS_JIS(const char* src, unsigned int len, CString& out);
    // Converts len bytes of ISO-2022-JP to Shift-JIS, which replaces out; never more bytes than len. Text without an
    // escape sequence passes unchanged. out ends at the first NUL of the result, so a broken pair cuts the text. A
    // null src leaves out untouched. src may lie inside out.
    static void JIS_SJIS(const char* src, unsigned int len, CString& out);
    // Replaces out by the longest head of the len bytes at src that fits maxLen bytes and splits no character. Where
    // maxLen is at least len, out becomes the text at src up to its NUL. src may lie inside out.
    static void CutSJIS(const char* src, unsigned int len, unsigned int maxLen, CString& out);

    // Decodes percent-hex text, "%41" (RFC 2231 4), into buffer, of capacity bytes, owned by the caller; no NUL is
    // added. written takes the number of bytes. 0: buffer is null or capacity is below the length of text, and written
    // is 0. Bad digits are no failure: a pair counts as far as it is a hex number.
    static int HexDecode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written);

protected:
    // Puts the full-width character for the half-width kana at src, joined with the mark in src[1] if it can take it,
    // into dst[0] and dst[1] and a 0 into dst[2]. The result is the number of source bytes used, 1 or 2.
    static unsigned int ConvHanKana_ZenKana(const char* src, char* const dst);
    // Puts the full-width character for the half-width kana c into dst[0] and dst[1].
    static void ConvHanKana_ZenKana_1char(char c, char* const dst);
    // Converts one character between Shift-JIS and the row and cell bytes of JIS X 0208. A pair that is not valid gives
    // two NUL bytes.
    static void ConvKanji_SJIS_JIS(char c1, char c2, char& o1, char& o2);
    static void ConvKanji_JIS_SJIS(char c1, char c2, char& o1, char& o2);

private:
    // Full-width characters from 0xA1, and joined with a voiced mark from 0xB6 and 0xCA, with a semi-voiced one from
    // 0xCA. A cell is a lead byte and a trail byte in memory; a zero cell ends each table.
    static const short* const kanaTable;
    static const short* const dakutenKanaTable1;
    static const short* const dakutenKanaTable2;
    static const short* const handakutenKanaTable;
};
