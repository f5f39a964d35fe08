#include <hostkit/characters/Utf8.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

std::string SpelledByte(char32_t byte) {
    return {'\\', 'x', kHexDigits[byte >> 4], kHexDigits[byte & 0xF]};
}

}  // namespace

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::Utf8CharacterAt(text, i);
        if (character.code == platform::kNoCharacter) return false;
        i += character.bytes;
    }
    return true;
}

bool IsUnseen(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0xAD || (code >= 0x200B && code <= 0x200F) ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF ||
           (code >= 0xFFF9 && code <= 0xFFFB) || code >= 0xE0000;
}

std::string Shown(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::Utf8CharacterAt(text, i);
        if (character.code == platform::kNoCharacter) {
            shown += SpelledByte(static_cast<unsigned char>(text[i]));
        } else if (!IsUnseen(character.code)) {
            shown += text.substr(i, character.bytes);
        } else if (character.code < 0x100) {
            shown += SpelledByte(character.code);
        } else {
            shown += "\\u" + platform::NameOf(character.code).substr(2);
        }
        i += character.bytes;
    }
    return shown;
}

}  // namespace hostkit
