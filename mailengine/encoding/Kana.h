// Kana: the full-width characters that stand for half-width kana, alone and joined with a voiced or semi-voiced mark
// (JIS X 0201 and JIS X 0208). Internal to the conversions; constants only.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace kana {

inline constexpr unsigned char kFirst = 0xA1, kLast = 0xDF;
inline constexpr unsigned char kVoicedMark = 0xDE, kSemiVoicedMark = 0xDF;

// A cell holds a Shift-JIS character as its lead byte followed by its trail byte in memory, on any machine, so that a
// copy of the cell is the character.
constexpr short Cell(unsigned code) {
    return std::bit_cast<short>(
        std::array<unsigned char, 2>{static_cast<unsigned char>(code >> 8), static_cast<unsigned char>(code & 0xFF)});
}

constexpr unsigned CodeOf(short cell) {
    const auto bytes = std::bit_cast<std::array<unsigned char, 2>>(cell);
    return static_cast<unsigned>(bytes[0] << 8 | bytes[1]);
}

template <class... Codes>
constexpr std::array<short, sizeof...(Codes) + 1> MakeCells(Codes... codes) {
    return {Cell(static_cast<unsigned>(codes))..., 0};
}

// From 0xA1: 。「」、・ヲ ァィゥェォャュョッー アイウエオ ... ワン゛゜
inline constexpr auto kPlain =
    MakeCells(0x8142, 0x8175, 0x8176, 0x8141, 0x8145, 0x8392, 0x8340, 0x8342, 0x8344, 0x8346, 0x8348, 0x8383, 0x8385,
              0x8387, 0x8362, 0x815B, 0x8341, 0x8343, 0x8345, 0x8347, 0x8349, 0x834A, 0x834C, 0x834E, 0x8350, 0x8352,
              0x8354, 0x8356, 0x8358, 0x835A, 0x835C, 0x835E, 0x8360, 0x8363, 0x8365, 0x8367, 0x8369, 0x836A, 0x836B,
              0x836C, 0x836D, 0x836E, 0x8371, 0x8374, 0x8377, 0x837A, 0x837D, 0x837E, 0x8380, 0x8381, 0x8382, 0x8384,
              0x8386, 0x8388, 0x8389, 0x838A, 0x838B, 0x838C, 0x838D, 0x838F, 0x8393, 0x814A, 0x814B);
// From 0xB6: ガギグゲゴ ザジズゼゾ ダヂヅデド, and バビブベボ again, which stand apart in JIS X 0201
inline constexpr auto kVoiced =
    MakeCells(0x834B, 0x834D, 0x834F, 0x8351, 0x8353, 0x8355, 0x8357, 0x8359, 0x835B, 0x835D, 0x835F, 0x8361, 0x8364,
              0x8366, 0x8368, 0x836F, 0x8372, 0x8375, 0x8378, 0x837B);
// From 0xCA: バビブベボ, パピプペポ
inline constexpr auto kVoicedHa = MakeCells(0x836F, 0x8372, 0x8375, 0x8378, 0x837B);
inline constexpr auto kSemiVoicedHa = MakeCells(0x8370, 0x8373, 0x8376, 0x8379, 0x837C);

static_assert(kPlain.size() == kLast - kFirst + 1 + 1);  // one cell for each half-width kana, and the closing zero
static_assert(kVoiced.size() == 0xC4 - 0xB6 + 1 + kVoicedHa.size());
static_assert(kVoicedHa.size() == 0xCE - 0xCA + 1 + 1 && kSemiVoicedHa.size() == kVoicedHa.size());

constexpr bool IsKana(unsigned char byte) {
    return byte >= kFirst && byte <= kLast;
}

// The full-width character of a half-width kana, and the bytes, 1 or 2, that it and its mark take.
struct FullWidth {
    short cell;
    unsigned bytes;
};

constexpr FullWidth Widen(unsigned char byte, unsigned char next) {
    const auto at = [byte](const auto& table, unsigned char first) {
        return table[static_cast<std::size_t>(byte - first)];
    };
    const bool isHa = byte >= 0xCA && byte <= 0xCE;
    if (next == kVoicedMark && byte >= 0xB6 && byte <= 0xC4) return {at(kVoiced, 0xB6), 2};
    if (next == kVoicedMark && isHa) return {at(kVoicedHa, 0xCA), 2};
    if (next == kSemiVoicedMark && isHa) return {at(kSemiVoicedHa, 0xCA), 2};
    return {at(kPlain, kFirst), 1};
}

}  // namespace kana
