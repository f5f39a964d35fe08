#include "Border.h"

#include <array>
#include <cstdint>
#include <iconv.h>
#include <memory>

#include <mailengine/support/platform/text/Characters.h>

#include "Failure.h"
#include "Utf8.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::uint16_t kGeta = 0x81AC;  // 〓, what printers set for a character that they lack

bool IsHalfWidthKana(unsigned char byte) {
    return byte >= 0xA1 && byte <= 0xDF;
}

constexpr char32_t kFirstHalfWidthKana = 0xFF61;  // stands for the byte A1

// What another system types for a character of code page 932.
struct Cousin {
    char16_t typed;
    std::uint16_t code;
};
constexpr Cousin kCousins[] = {
    {0x00A0, 0x0020}, {0x00A2, 0x8191}, {0x00A3, 0x8192}, {0x00A5, 0x818F}, {0x00A6, 0xEEFA}, {0x00AC, 0x81CA},
    {0x00B7, 0x8145}, {0x2014, 0x815C}, {0x2016, 0x8161}, {0x203E, 0x8150}, {0x2212, 0x817C}, {0x301C, 0x8160},
};

// Lead bytes in the order in which their codes are preferred; what stands in no row is never written.
struct Rows {
    unsigned char first;
    unsigned char last;
};
constexpr Rows kCarriedRows[] = {
    {0x81, 0x84}, {0x88, 0x9F}, {0xE0, 0xEA},  // JIS X 0208
    {0x87, 0x87},                              // NEC's row 13
    {0xED, 0xEE},                              // NEC's selection of the IBM extension
};

// Both directions of the double-byte characters, as libc tells them.
class CTables {
public:
    CTables();
    char16_t CharacterOf(unsigned lead, unsigned trail) const { return m_characters[lead << 8 | trail]; }
    std::uint16_t CodeOf(char32_t character) const { return character < m_codes.size() ? m_codes[character] : 0; }

private:
    void ReadRow(iconv_t converter, unsigned lead);
    void PreferRow(unsigned lead);

    std::array<char16_t, 0x10000> m_characters{};  // by code; 0: none
    std::array<std::uint16_t, 0x10000> m_codes{};  // by character; 0: none that a mail can carry
};

CTables::CTables() {
    const iconv_t converter = iconv_open("UTF-16LE", "CP932");
    if (converter == reinterpret_cast<iconv_t>(-1)) {
        throw CFailure("this system's libc has no conversion for code page 932; install its gconv modules");
    }
    for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
        if (platform::IsLeadByte(static_cast<unsigned char>(lead))) ReadRow(converter, lead);
    }
    iconv_close(converter);
    for (const Rows& rows : kCarriedRows) {
        for (unsigned lead = rows.first; lead <= rows.last; ++lead)
            PreferRow(lead);
    }
    for (const Cousin& cousin : kCousins) {
        if (m_codes[cousin.typed] == 0) m_codes[cousin.typed] = cousin.code;
    }
}

void CTables::ReadRow(iconv_t converter, unsigned lead) {
    for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
        char code[] = {static_cast<char>(lead), static_cast<char>(trail)};
        unsigned char utf16[4];
        char* in = code;
        char* out = reinterpret_cast<char*>(utf16);
        std::size_t inLeft = sizeof code;
        std::size_t outLeft = sizeof utf16;
        const std::size_t result = iconv(converter, &in, &inLeft, &out, &outLeft);
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        if (result == static_cast<std::size_t>(-1) || outLeft != sizeof utf16 - 2) continue;
        m_characters[lead << 8 | trail] = static_cast<char16_t>(utf16[0] | utf16[1] << 8);
    }
}

void CTables::PreferRow(unsigned lead) {
    for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
        const char16_t character = CharacterOf(lead, trail);
        if (character != 0 && m_codes[character] == 0)
            m_codes[character] = static_cast<std::uint16_t>(lead << 8 | trail);
    }
}

const CTables& Tables() {
    static const std::unique_ptr<const CTables> tables = std::make_unique<CTables>();
    return *tables;
}

// The code of a character that is no control: one byte, or two with the lead byte high. 0: a mail cannot carry it.
std::uint16_t CodeOf(char32_t character) {
    if (character < 0x80) return static_cast<std::uint16_t>(character);
    if (character >= kFirstHalfWidthKana && character <= kFirstHalfWidthKana + 0x3E) {
        return static_cast<std::uint16_t>(character - kFirstHalfWidthKana + 0xA1);
    }
    return Tables().CodeOf(character);
}

void AppendCode(std::string& text, std::uint16_t code) {
    if (code > 0xFF) text += static_cast<char>(code >> 8);
    text += static_cast<char>(code & 0xFF);
}

// One whole character of a text inside. length is 1 or 2; character is U+FFFD where the bytes stand for none.
utf8::Character InsideCharacterAt(std::string_view text, std::size_t offset) {
    const auto first = static_cast<unsigned char>(text[offset]);
    if (first < 0x80) return {first, 1};
    if (IsHalfWidthKana(first)) return {first - 0xA1 + kFirstHalfWidthKana, 1};
    if (!platform::IsLeadByte(first) || offset + 1 == text.size()) return {kReplacement, 1};
    const auto second = static_cast<unsigned char>(text[offset + 1]);
    if (!platform::IsTrailByte(second)) return {kReplacement, 1};
    const char16_t character = Tables().CharacterOf(first, second);
    return {character == 0 ? kReplacement : character, 2};
}

// "--body: line 2, column 5", for the character at offset. The text before it is UTF-8.
std::string PlaceOf(std::string_view text, std::size_t offset, const std::string& what) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < offset; i += utf8::CharacterAt(text, i).length) {
        const bool ends = text[i] == '\n' ? i == 0 || text[i - 1] != '\r' : text[i] == '\r';
        if (ends) {
            ++line;
            column = 1;
        } else if (text[i] != '\n') {
            ++column;
        }
    }
    return what + ": line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

bool IsControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}
bool MayStandInLetter(char32_t control) {
    return control == '\r' || control == '\n' || control == '\t';
}

// UTF-8 on its way in: one text, one call of Convert.
class CEntry {
public:
    CEntry(std::string_view text, border::Extent extent, border::Missing missing, const std::string& what)
        : m_strText(text), m_nExtent(extent), m_nMissing(missing), m_strWhat(what) {}
    std::string Convert();

private:
    void Take(const utf8::Character& character);
    void TakeLineEnd();
    [[noreturn]] void RefuseByte() const;
    [[noreturn]] void RefuseControl(char32_t control) const;
    [[noreturn]] void RefuseCharacter(char32_t character) const;

    std::string_view m_strText;
    border::Extent m_nExtent;
    border::Missing m_nMissing;
    const std::string& m_strWhat;
    std::size_t m_nOffset = 0;
    std::string m_strInside;
};

std::string CEntry::Convert() {
    m_strInside.reserve(m_strText.size());
    while (m_nOffset < m_strText.size()) {
        const utf8::Character character = utf8::CharacterAt(m_strText, m_nOffset);
        if (character.length == 0) RefuseByte();
        Take(character);
        m_nOffset += character.length;
    }
    return std::move(m_strInside);
}

void CEntry::Take(const utf8::Character& character) {
    if (IsControl(character.code)) {
        if (m_nExtent == border::Extent::Line || !MayStandInLetter(character.code)) RefuseControl(character.code);
        if (character.code != '\t') return TakeLineEnd();
    }
    std::uint16_t code = CodeOf(character.code);
    if (code == 0 && m_nMissing == border::Missing::Refuse) RefuseCharacter(character.code);
    AppendCode(m_strInside, code == 0 ? kGeta : code);
}

// At a CR or an LF: the LF of a CRLF was told with its CR.
void CEntry::TakeLineEnd() {
    if (m_strText[m_nOffset] == '\n' && m_nOffset > 0 && m_strText[m_nOffset - 1] == '\r') return;
    m_strInside += "\r\n";
}

void CEntry::RefuseByte() const {
    const std::string byte = utf8::Shown(m_strText.substr(m_nOffset, 1)).substr(2);
    throw CFailure(PlaceOf(m_strText, m_nOffset, m_strWhat) + "the byte 0x" + byte +
                   " is not UTF-8; convert the text to UTF-8 first (iconv -f SHIFT_JIS, for example)");
}

void CEntry::RefuseControl(char32_t control) const {
    const bool breaks = m_nExtent == border::Extent::Line && (control == '\r' || control == '\n');
    throw CFailure(PlaceOf(m_strText, m_nOffset, m_strWhat) +
                   (breaks ? "a line ends here; give one line"
                           : "the control character " + utf8::NameOf(control) + " cannot stand here; take it out"));
}

void CEntry::RefuseCharacter(char32_t character) const {
    std::string sign;
    utf8::Append(sign, character);
    throw CFailure(PlaceOf(m_strText, m_nOffset, m_strWhat) + sign + " (" + utf8::NameOf(character) +
                   ") has no code in a Japanese mail; take it out, or let --replace put 〓 in its place");
}

}  // namespace

CString border::ToInside(std::string_view utf8, Extent extent, Missing missing, const std::string& what) {
    if (utf8.size() > kMaxTextBytes) {
        throw CFailure(what + ": the text is larger than 256 MiB; send it as an attachment");
    }
    return CString(CEntry(utf8, extent, missing, what).Convert());
}

std::string border::ToOutside(std::string_view inside) {
    std::string outside;
    outside.reserve(inside.size() + inside.size() / 2);
    for (std::size_t i = 0; i < inside.size();) {
        const utf8::Character character = InsideCharacterAt(inside, i);
        utf8::Append(outside, character.code);
        i += character.length;
    }
    return outside;
}

CString border::ToCarriedCodes(std::string_view inside, const std::string& what) {
    std::string carried;
    for (std::size_t i = 0; i < inside.size();) {
        const utf8::Character character = InsideCharacterAt(inside, i);
        const std::uint16_t code = CodeOf(character.code);
        if (code == 0) {
            throw CFailure(what + ": the character " + utf8::NameOf(character.code) +
                           " has no code in a Japanese mail; use a name without it");
        }
        AppendCode(carried, code);
        i += character.length;
    }
    return CString(std::move(carried));
}
