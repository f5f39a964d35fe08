#include <mailengine/encoding/HexEscapes.h>
#include <mailengine/encoding/Kana.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/support/platform/Characters.h>

int CLanguage::IsJapanese(const CString& text) {
    for (const char c : text.View())
        if (IsJSjisKanji(c) || IsHankakuKana(c)) return 1;
    return 0;
}

int CLanguage::IsJSjisKanji(char c) {
    return platform::IsLeadByte(static_cast<unsigned char>(c));
}

int CLanguage::IsHankakuKana(char c) {
    return kana::IsKana(static_cast<unsigned char>(c));
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
