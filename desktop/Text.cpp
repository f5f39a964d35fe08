#include <desktop/Text.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace desktop {

wxString ToToolkit(const char* text) {
    const std::string_view bytes(text == nullptr ? "" : text);
    std::string utf8;
    for (std::size_t at = 0; at < bytes.size();) {
        const platform::Character character = platform::CodePageCharacterAt(bytes, at);
        platform::AppendUtf8(utf8, character.code == platform::kNoCharacter ? U'\uFFFD' : character.code);
        at += character.bytes;
    }
    return wxString::FromUTF8(utf8);
}

}  // namespace desktop
