#include <glib.h>
#include <hostkit/characters/Utf8.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

std::string SpelledByte(char32_t byte) {
    return {'\\', 'x', kHexDigits[byte >> 4], kHexDigits[byte & 0xF]};
}

std::string Spelled(char32_t code) {
    return code < 0x100 ? SpelledByte(code) : "\\u" + platform::NameOf(code).substr(2);
}

bool IsSymbol(char32_t code) {
    const GUnicodeType type = g_unichar_type(code);
    return code > 0x7F && (type == G_UNICODE_OTHER_SYMBOL || type == G_UNICODE_MATH_SYMBOL);
}

// What changes the picture in front of it: another form of it, or the colour of its skin.
bool IsSelector(char32_t code) {
    return code == 0xFE0F || (code >= 0x1F3FB && code <= 0x1F3FF);
}

// The tags that name a region behind a black flag, two letters of a country and up to four of its part, and the tag
// that ends them: any others would be a text that nobody sees. 0: they are none.
std::size_t FlagTagBytes(std::string_view text) {
    constexpr char32_t kTagSpace = 0xE0000;
    constexpr char32_t kLastTag = 0xE007F;
    constexpr int kMostTags = 6;
    std::size_t bytes = 0;
    for (int tags = 0; bytes < text.size(); ++tags) {
        const platform::Character tag = platform::Utf8CharacterAt(text, bytes);
        bytes += tag.bytes;
        if (tag.code == kLastTag) return tags >= 3 ? bytes : 0;
        const char32_t letter = tag.code - kTagSpace;
        if (tags == kMostTags || !((letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9'))) break;
    }
    return 0;
}

// How many bytes at the top of text, which begins with an unseen character, belong to the emoji sequence that began
// with picture.
std::size_t JoiningBytes(std::string_view text, char32_t picture) {
    constexpr char32_t kJoiner = 0x200D;
    constexpr char32_t kBlackFlag = 0x1F3F4;
    if (picture == 0) return 0;
    const platform::Character first = platform::Utf8CharacterAt(text, 0);
    if (first.code != kJoiner) return picture == kBlackFlag ? FlagTagBytes(text) : 0;
    return first.bytes < text.size() && IsSymbol(platform::Utf8CharacterAt(text, first.bytes).code) ? first.bytes : 0;
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
    if (code < 0x7F) return code < 0x20;
    switch (g_unichar_type(code)) {
        case G_UNICODE_CONTROL:
        case G_UNICODE_FORMAT:
        case G_UNICODE_LINE_SEPARATOR:
        case G_UNICODE_PARAGRAPH_SEPARATOR:
            return true;
        default:
            return false;
    }
}

bool IsLineEnd(char32_t code) {
    return (code >= '\t' && code <= '\r') || code == 0x85 || code == 0x2028 || code == 0x2029;
}

std::string Shown(std::string_view text) {
    std::string shown;
    char32_t picture = 0;  // what the last picture began with, 0 where a joiner could not follow it
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::Utf8CharacterAt(text, i);
        std::size_t bytes = character.bytes;
        if (character.code == platform::kNoCharacter) {
            shown += SpelledByte(static_cast<unsigned char>(text[i]));
        } else if (!IsUnseen(character.code)) {
            shown.append(text, i, bytes);
        } else if (const std::size_t joining = JoiningBytes(text.substr(i), picture); joining != 0) {
            bytes = joining;
            shown.append(text, i, bytes);
        } else {
            shown += Spelled(character.code);
        }
        if (!IsSelector(character.code)) picture = IsSymbol(character.code) ? character.code : 0;
        i += bytes;
    }
    return shown;
}

}  // namespace hostkit
