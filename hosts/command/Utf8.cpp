#include "Utf8.h"

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

unsigned char ByteAt(std::string_view text, std::size_t offset) {
    return static_cast<unsigned char>(text[offset]);
}

// Bytes of the character that first begins, 0 if none can begin so.
std::size_t LengthBy(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

bool IsShortest(char32_t code, std::size_t length) {
    constexpr char32_t kFirst[] = {0, 0, 0x80, 0x800, 0x10000};
    return code >= kFirst[length];
}

bool IsCharacter(char32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

std::string Hex(char32_t code, int digits) {
    std::string text;
    for (int shift = 20; shift >= 0; shift -= 4) {
        if (shift / 4 < digits || (code >> shift) != 0) text += kHexDigits[(code >> shift) & 0xF];
    }
    return text;
}

}  // namespace

utf8::Character utf8::CharacterAt(std::string_view text, std::size_t offset) {
    const unsigned char first = ByteAt(text, offset);
    const std::size_t length = LengthBy(first);
    if (length < 2) return {first, length};
    if (length > text.size() - offset) return {};
    char32_t code = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned char next = ByteAt(text, offset + i);
        if ((next & 0xC0) != 0x80) return {};
        code = code << 6 | (next & 0x3Fu);
    }
    if (!IsShortest(code, length) || !IsCharacter(code)) return {};
    return {code, length};
}

void utf8::Append(std::string& text, char32_t code) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80u | ((code >> shift) & 0x3Fu)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0u | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0u | code >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0u | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

bool utf8::IsUnseen(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0xAD || (code >= 0x200B && code <= 0x200F) ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF ||
           (code >= 0xFFF9 && code <= 0xFFFB) || code >= 0xE0000;
}

std::string utf8::Shown(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const Character character = CharacterAt(text, i);
        if (character.length == 0) {
            shown += "\\x" + Hex(ByteAt(text, i), 2);
        } else if (IsUnseen(character.code)) {
            shown += character.code < 0x100 ? "\\x" + Hex(character.code, 2) : "\\u" + Hex(character.code, 4);
        } else {
            shown += text.substr(i, character.length);
        }
        i += character.length == 0 ? 1 : character.length;
    }
    return shown;
}

std::string utf8::NameOf(char32_t code) {
    return "U+" + Hex(code, 4);
}
