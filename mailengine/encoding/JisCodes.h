// JisCodes: what both conversions share: the escape sequences of ISO-2022-JP (RFC 1468) and the arithmetic between
// Shift-JIS and the row and cell bytes of JIS X 0208. Internal; constants and stateless helpers.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/support/platform/text/String.h>

namespace jis {

inline constexpr unsigned char kEscape = 0x1B;
inline constexpr std::string_view kToDoubleByte = "\x1b$B";
inline constexpr std::string_view kToSingleByte = "\x1b(B";

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

// The inverse: lead and trail byte, lead high; 0 if the pair is no row and cell.
constexpr std::uint16_t ShiftJisOf(unsigned char row, unsigned char cell) {
    if (!IsJisByte(row) || !IsJisByte(cell)) return 0;
    const int pair = (row - 0x21) / 2;
    const int lead = pair + (pair <= 0x9F - 0x81 ? 0x81 : 0xC1);
    const bool second = (row - 0x21) % 2 != 0;
    const int trail = cell + (second ? 0x7E : cell <= 0x7E - 0x1F ? 0x1F : 0x20);
    return static_cast<std::uint16_t>(lead << 8 | trail);
}

// Inside a run of double-byte characters the arithmetic is a sum of what each of the two bytes gives, the first
// result byte low; a byte that fits no character puts the sum above all characters.
using Parts = std::array<std::uint32_t, 256>;
inline constexpr std::uint32_t kNoPart = 1u << 20;

constexpr std::uint32_t FirstLow(std::uint16_t pair) {
    return static_cast<std::uint32_t>(pair >> 8 | (pair & 0xFF) << 8);
}

// Puts the two bytes of a sum to to, in order.
inline void StorePair(std::uint32_t sum, char* to) {
    to[0] = static_cast<char>(sum & 0xFF);
    to[1] = static_cast<char>(sum >> 8 & 0xFF);
}

// How far a conversion came.
struct Cursor {
    const unsigned char* at;
    char* to;
};

// The number of sums in front of the first that is no character.
inline std::size_t GoodPairs(const std::uint32_t (&sums)[4]) {
    if ((sums[0] | sums[1] | sums[2] | sums[3]) < kNoPart) return 4;
    const unsigned bad = (sums[0] >= kNoPart ? 1u : 0u) | (sums[1] >= kNoPart ? 2u : 0u) |
                         (sums[2] >= kNoPart ? 4u : 0u) | (sums[3] >= kNoPart ? 8u : 0u);
    return static_cast<std::size_t>(std::countr_zero(bad));
}

// Converts pairs by their sums, up to the first that is no character, until fewer than 2 bytes are left in front of end
// or the output has reached full. There is no branch on the bytes inside the run, which is what makes it fast.
template <std::uint32_t (*SumOf)(const unsigned char*)>
Cursor ConvertPairs(Cursor run, const unsigned char* end, const char* full) {
    auto [at, to] = run;
    while (end - at >= 8 && to < full) {
        const std::uint32_t sums[] = {SumOf(at), SumOf(at + 2), SumOf(at + 4), SumOf(at + 6)};
        for (std::size_t pair = 0; pair < 4; ++pair)
            StorePair(sums[pair], to + 2 * pair);
        const std::size_t good = GoodPairs(sums);
        at += 2 * good;
        to += 2 * good;
        if (good < 4) return {at, to};
    }
    for (; end - at >= 2 && to < full; at += 2, to += 2) {
        const std::uint32_t sum = SumOf(at);
        if (sum >= kNoPart) break;
        StorePair(sum, to);
    }
    return {at, to};
}

inline char* Put(std::string_view bytes, char* to) {
    return std::copy(bytes.begin(), bytes.end(), to);
}

// Gathers converted bytes on their way to a string, because one that grows by single bytes costs most of the speed.
class Piece {
public:
    static constexpr std::size_t kFull = 8192;

    explicit Piece(CString& out) : m_out(out) {}

    char* Top() { return m_bytes.data(); }
    const char* Full() const { return m_bytes.data() + kFull; }
    // Hands over what stands in front of to; the result is where to go on.
    char* Flush(const char* to) {
        m_out += std::string_view(Top(), static_cast<std::size_t>(to - Top()));
        return Top();
    }

private:
    static constexpr std::size_t kStep = 32;  // more than runs and escape sequences put behind their last look at Full

    CString& m_out;
    std::array<char, kFull + kStep> m_bytes;
};

// A mark, the highest bit, in each byte of a word.
inline constexpr std::uint64_t kMarks = 0x8080808080808080u;

inline std::uint64_t LoadWord(const unsigned char* from) {
    std::uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// The number of bytes in front of the first marked one, 8 if there is none.
inline std::size_t BytesBeforeMark(std::uint64_t word) {
    if constexpr (std::endian::native == std::endian::little)
        return static_cast<std::size_t>(std::countr_zero(word & kMarks)) / 8;
    else
        return static_cast<std::size_t>(std::countl_zero(word & kMarks)) / 8;
}

// Marks the bytes of word that are 0.
constexpr std::uint64_t MarkZeros(std::uint64_t word) {
    return ~(((word & ~kMarks) + ~kMarks) | word) & kMarks;
}

}  // namespace jis
