#include <array>
#include <cstddef>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Groups.h>

const char* const CBase64::base64Table = base64::kAlphabet;

namespace base64 {

Progress DecodeGroups(std::string_view text, unsigned char* to, std::size_t room) {
    Progress done;
    while (done.taken < text.size() && room - done.made >= 3) {
        const char* const from = text.data() + done.taken;
        if (IsLineEnd(*from)) {
            ++done.taken;
            continue;
        }
        if (text.size() - done.taken < 4) break;
        const std::uint32_t group = GroupOf(from);
        if (group < kNoDigit) {
            Store(group, to + done.made);
            done.made += 3;
        } else {
            done.made += DecodeOddGroup(from, 4, to + done.made);
        }
        done.taken += 4;
    }
    return done;
}

}  // namespace base64

namespace {

constexpr std::size_t kPieceGroups = 1024;

char Digit(std::uint32_t group, int shift) {
    return base64::kAlphabet[group >> shift & 0x3F];
}

// Puts the digits of count bytes, 1 to 3, and their padding to to[0] .. to[3].
void EncodeGroup(const unsigned char* from, std::size_t count, char* to) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i)
        group = group << 8 | (i < count ? from[i] : 0u);
    to[0] = Digit(group, 18);
    to[1] = Digit(group, 12);
    to[2] = count > 1 ? Digit(group, 6) : '=';
    to[3] = count > 2 ? Digit(group, 0) : '=';
}

}  // namespace

unsigned int CBase64::CalcEnecodedSize(unsigned int size) {
    const unsigned int lines = size / 54;
    const unsigned int rest = size % 54 * 4 / 3;
    return lines * 74 + rest + 4 - rest % 4;
}

int CBase64::Encode(const unsigned char* data, unsigned int size, CString& text) {
    std::array<char, kPieceGroups * 4> piece;
    for (std::size_t at = 0; at < size;) {
        std::size_t used = 0;
        for (; used < piece.size() && at < size; used += 4, at += 3)
            EncodeGroup(data + at, std::min<std::size_t>(size - at, 3), piece.data() + used);
        text += std::string_view(piece.data(), used);
    }
    return 1;
}

int CBase64::Decode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written) {
    written = 0;
    const std::string_view all = text.View();
    if (buffer == nullptr || capacity < all.size()) return 0;
    base64::Progress done = base64::DecodeGroups(all, buffer, capacity);
    const std::size_t rest = all.size() - done.taken;
    if (rest > 0) {
        if (capacity - done.made < 3) return 0;
        done.made += base64::DecodeOddGroup(all.data() + done.taken, rest, buffer + done.made);
    }
    written = static_cast<unsigned int>(done.made);
    return 1;
}
