// Base64Groups: the groups of four that Base64 (RFC 2045 6.8) is made of, for the codec and its vector path. Internal;
// stateless.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace base64 {

inline constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(sizeof(kAlphabet) == 64 + 1);

// A value above that of any whole group: set in each place of a group for every character outside the alphabet.
inline constexpr std::uint32_t kNoDigit = 1u << 24;

// The bits of a character in each of the four places of a group.
using PlaceTables = std::array<std::array<std::uint32_t, 256>, 4>;
constexpr PlaceTables MakePlaceTables() {
    PlaceTables tables{};
    for (std::size_t place = 0; place < 4; ++place) {
        tables[place].fill(kNoDigit);
        for (std::uint32_t digit = 0; digit < 64; ++digit)
            tables[place][static_cast<unsigned char>(kAlphabet[digit])] = digit << (18 - 6 * place);
    }
    return tables;
}
inline constexpr PlaceTables kPlaces = MakePlaceTables();

constexpr std::uint32_t InPlace(std::size_t place, char c) {
    return kPlaces[place][static_cast<unsigned char>(c)];
}

constexpr std::uint32_t GroupOf(const char* from) {
    return InPlace(0, from[0]) | InPlace(1, from[1]) | InPlace(2, from[2]) | InPlace(3, from[3]);
}

constexpr void Store(std::uint32_t group, unsigned char* to) {
    to[0] = static_cast<unsigned char>(group >> 16);
    to[1] = static_cast<unsigned char>(group >> 8 & 0xFF);
    to[2] = static_cast<unsigned char>(group & 0xFF);
}

// Decodes a group with padding, with characters outside the alphabet, which count as 0 bits, or cut short to count
// characters, where the missing ones count as padding. The result is the bytes written, 1 to 3.
constexpr std::size_t DecodeOddGroup(const char* from, std::size_t count, unsigned char* to) {
    std::array<char, 4> text{'=', '=', '=', '='};
    std::copy_n(from, count, text.begin());
    std::array<unsigned char, 3> bytes{};
    std::uint32_t group = 0;
    for (std::size_t place = 0; place < 4; ++place)
        group |= InPlace(place, text[place]) & (kNoDigit - 1);
    Store(group, bytes.data());
    const std::size_t made = text[2] == '=' ? 1 : text[3] == '=' ? 2 : 3;
    std::copy_n(bytes.begin(), made, to);
    return made;
}

constexpr bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

// How far a decoder came: characters taken and bytes made.
struct Progress {
    std::size_t taken = 0;
    std::size_t made = 0;
};

// Decodes whole groups of text and passes over the line ends between them, until fewer than four characters are left
// at the top of a group, the text is used up or fewer than 3 bytes are free in the room bytes at to. The plain one does
// the same on any machine, going on from done.
Progress DecodeGroups(std::string_view text, unsigned char* to, std::size_t room);
Progress DecodePlain(std::string_view text, unsigned char* to, std::size_t room, Progress done = {});

// Puts the digits and padding of the size bytes at from to to, which has room for 4 characters for each 3 bytes begun.
// The result is the number of characters. The plain one does the same on any machine.
std::size_t EncodeGroups(const unsigned char* from, std::size_t size, char* to);
std::size_t EncodePlain(const unsigned char* from, std::size_t size, char* to);

}  // namespace base64
