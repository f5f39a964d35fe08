#include <cstring>

#include <mailengine/encoding/HexEscapes.h>
#include <mailengine/encoding/JisCodes.h>
#include <mailengine/encoding/Kana.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/support/platform/text/Characters.h>

const short* const CLanguage::kanaTable = kana::kPlain.data();
const short* const CLanguage::dakutenKanaTable1 = kana::kVoiced.data();
const short* const CLanguage::dakutenKanaTable2 = kana::kVoicedHa.data();
const short* const CLanguage::handakutenKanaTable = kana::kSemiVoicedHa.data();

namespace {

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

void Split(std::uint16_t pair, char& first, char& second) {
    first = static_cast<char>(pair >> 8);
    second = static_cast<char>(pair & 0xFF);
}

}  // namespace

int CLanguage::IsJapanese(const CString& text) {
    for (const char c : text.View())
        if (IsJSjisKanji(c) || IsHankakuKana(c)) return 1;
    return 0;
}

int CLanguage::IsJSjisKanji(char c) {
    return platform::IsLeadByte(Byte(c));
}

int CLanguage::IsHankakuKana(char c) {
    return kana::IsKana(Byte(c));
}

void CLanguage::CutSJIS(const char* src, unsigned int len, unsigned int maxLen, CString& out) {
    if (maxLen >= len) {
        out = CString(src);
        return;
    }
    std::size_t end = 0;
    while (end < maxLen) {
        const std::size_t bytes = IsJSjisKanji(src[end]) ? 2 : 1;
        if (end + bytes > maxLen) break;
        end += bytes;
    }
    out = CString(std::string_view(src, end));
}

int CLanguage::HexDecode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written) {
    return hexescapes::Decode<hexescapes::PercentHex>(text, buffer, capacity, written);
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
    Split(jis::JisOf(Byte(c1), Byte(c2)), o1, o2);
}

void CLanguage::ConvKanji_JIS_SJIS(char c1, char c2, char& o1, char& o2) {
    Split(jis::ShiftJisOf(Byte(c1), Byte(c2)), o1, o2);
}
