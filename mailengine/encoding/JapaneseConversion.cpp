#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include <mailengine/encoding/Kana.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/support/platform/Characters.h>

const short* const CLanguage::kanaTable = kana::kPlain.data();
const short* const CLanguage::dakutenKanaTable1 = kana::kVoiced.data();
const short* const CLanguage::dakutenKanaTable2 = kana::kVoicedHa.data();
const short* const CLanguage::handakutenKanaTable = kana::kSemiVoicedHa.data();

namespace {

constexpr std::string_view kToDoubleByte = "\x1b$B";
constexpr std::string_view kToSingleByte = "\x1b(B";
constexpr unsigned char kEscape = 0x1B;

constexpr bool IsJisByte(unsigned char byte) {
    return byte >= 0x21 && byte <= 0x7E;
}

// Row and cell byte, row high, of a character of code page 932; 0 if the pair is none. Whether the code is assigned
// is not asked: lead bytes from 0xF0 give rows that ISO-2022-JP does not have.
constexpr std::uint16_t JisOf(unsigned char lead, unsigned char trail) {
    if (!platform::IsLeadByte(lead) || !platform::IsTrailByte(trail)) return 0;
    const int pair = lead - (lead <= 0x9F ? 0x81 : 0xC1);
    const bool second = trail >= 0x9F;
    const int row = 2 * pair + (second ? 0x22 : 0x21);
    const int cell = trail - (second ? 0x7E : trail <= 0x7E ? 0x1F : 0x20);
    return static_cast<std::uint16_t>(row << 8 | cell);
}

// The inverse: lead and trail byte, 0 if the pair is no row and cell.
constexpr std::uint16_t ShiftJisOf(unsigned char row, unsigned char cell) {
    if (!IsJisByte(row) || !IsJisByte(cell)) return 0;
    const int pair = (row - 0x21) / 2;
    const int lead = pair + (pair <= 0x9F - 0x81 ? 0x81 : 0xC1);
    const bool second = (row - 0x21) % 2 != 0;
    const int trail = cell + (second ? 0x7E : cell <= 0x7E - 0x1F ? 0x1F : 0x20);
    return static_cast<std::uint16_t>(lead << 8 | trail);
}

void Split(std::uint16_t pair, char& first, char& second) {
    first = static_cast<char>(pair >> 8);
    second = static_cast<char>(pair & 0xFF);
}

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

// Converted bytes on their way to a string: they gather here, because a string that grows by single bytes costs most
// of the speed.
class Output {
public:
    explicit Output(CString& text) : m_text(text) {}

    void Put(char byte) {
        if (m_used == m_bytes.size()) Flush();
        m_bytes[m_used++] = byte;
    }
    void Put(std::string_view bytes) {
        for (const char byte : bytes)
            Put(byte);
    }
    void PutPair(std::uint16_t pair) {
        Put(static_cast<char>(pair >> 8));
        Put(static_cast<char>(pair & 0xFF));
    }
    void Flush() {
        m_text += std::string_view(m_bytes.data(), m_used);
        m_used = 0;
    }

private:
    CString& m_text;
    std::size_t m_used = 0;
    std::array<char, 4096> m_bytes;
};

enum class Kind : unsigned char { Single, Lead, Kana };

Kind KindOf(char c) {
    return platform::IsLeadByte(Byte(c)) ? Kind::Lead : kana::IsKana(Byte(c)) ? Kind::Kana : Kind::Single;
}

// Converts the double-byte character or half-width kana at src; the result is the number of bytes it took.
unsigned ConvertCharacter(const char* src, Output& output) {
    if (KindOf(src[0]) == Kind::Lead) {
        if (const std::uint16_t jis = JisOf(Byte(src[0]), Byte(src[1]))) output.PutPair(jis);
        return 2;
    }
    const kana::FullWidth wide = kana::Widen(Byte(src[0]), Byte(src[1]));
    const unsigned code = kana::CodeOf(wide.cell);
    output.PutPair(JisOf(static_cast<unsigned char>(code >> 8), static_cast<unsigned char>(code & 0xFF)));
    return wide.bytes;
}

// Reads ISO-2022-JP byte by byte. The three flags of a begun escape sequence stand apart on purpose: a new escape
// does not undo a begun one, and an escape does not undo half a character.
class JisReader {
public:
    explicit JisReader(Output& output) : m_output(output) {}

    // Takes the byte at src; behind the first byte of a text the one in front of it is looked at too. false: the
    // result would hold a NUL, where the text ends.
    bool Take(const char* src) {
        const unsigned char byte = Byte(*src);
        if (byte == kEscape) {
            m_escape = true;
            m_plain = false;
            return true;
        }
        return (!m_plain && TakeEscape(*src)) || TakeData(src);
    }

private:
    bool TakeEscape(char c) {
        if (m_escape && c == '(') return Move(m_escape, m_single);
        if (m_escape && c == '$') return Move(m_escape, m_double);
        if (m_single && (c == 'B' || c == 'J' || c == 'H' || c == 'I')) return Switch(m_single, false);
        if (m_double && (c == '@' || c == 'B')) return Switch(m_double, true);
        m_escape = m_single = m_double = false;
        return false;
    }
    static bool Move(bool& from, bool& to) {
        from = false;
        return to = true;
    }
    bool Switch(bool& flag, bool kanji) {
        flag = false;
        m_kanji = kanji;
        return true;
    }
    bool TakeData(const char* src) {
        if (!m_kanji) return *src != 0 && (m_output.Put(*src), true);
        m_half = !m_half;
        if (m_half) return true;
        const std::uint16_t pair = ShiftJisOf(Byte(src[-1]), Byte(src[0]));
        if (pair != 0) m_output.PutPair(pair);
        return pair != 0;
    }

    Output& m_output;
    bool m_plain = true;
    bool m_escape = false, m_single = false, m_double = false;  // ESC was read; ESC ( was; ESC $ was
    bool m_kanji = false;
    bool m_half = false;
};

}  // namespace

void CLanguage::SJIS_JIS(const char* src, unsigned int len, CString& out) {
    Output output(out);
    if (len == 0 || (KindOf(src[0]) == Kind::Single && !out.IsEmpty())) output.Put(kToSingleByte);
    bool doubleByte = false;
    for (std::size_t at = 0; at < len;) {
        const bool single = KindOf(src[at]) == Kind::Single;
        if (single == doubleByte) output.Put(single ? kToSingleByte : kToDoubleByte);
        doubleByte = !single;
        if (single)
            output.Put(src[at++]);
        else
            at += ConvertCharacter(src + at, output);
    }
    if (doubleByte) output.Put(kToSingleByte);
    output.Flush();
}

void CLanguage::JIS_SJIS(const char* src, unsigned int len, CString& out) {
    if (src == nullptr) return;
    CString result;
    Output output(result);
    JisReader reader(output);
    for (std::size_t at = 0; at < len && reader.Take(src + at); ++at) {
    }
    output.Flush();
    out = std::move(result);
}

unsigned int CLanguage::ConvHanKana_ZenKana(const char* src, char* const dst) {
    const kana::FullWidth wide = kana::Widen(Byte(src[0]), Byte(src[1]));
    std::memcpy(dst, &wide.cell, 2);
    dst[2] = 0;
    return wide.bytes;
}

void CLanguage::ConvHanKana_ZenKana_1char(char c, char* const dst) {
    std::memcpy(dst, &kanaTable[Byte(c) - kana::kFirst], 2);
}

void CLanguage::ConvKanji_SJIS_JIS(char c1, char c2, char& o1, char& o2) {
    Split(JisOf(Byte(c1), Byte(c2)), o1, o2);
}

void CLanguage::ConvKanji_JIS_SJIS(char c1, char c2, char& o1, char& o2) {
    Split(ShiftJisOf(Byte(c1), Byte(c2)), o1, o2);
}
