#include <mailengine/encoding/Language.h>
#include <mailengine/support/platform/Characters.h>

namespace {

bool IsKana(unsigned char byte) {
    return byte >= 0xA1 && byte <= 0xDF;
}

}  // namespace

int CLanguage::IsJapanese(const CString& text) {
    for (const char c : text.View())
        if (IsJSjisKanji(c) || IsHankakuKana(c)) return 1;
    return 0;
}

int CLanguage::IsJSjisKanji(char c) {
    return platform::IsLeadByte(static_cast<unsigned char>(c));
}

int CLanguage::IsHankakuKana(char c) {
    return IsKana(static_cast<unsigned char>(c));
}
