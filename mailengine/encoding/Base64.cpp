#include <algorithm>
#include <array>
#include <cstddef>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Groups.h>
#include <mailengine/encoding/Base64Vector.h>
#include <mailengine/support/Wire.h>

const char* const CBase64::base64Table = base64::kAlphabet;

namespace base64 {
namespace {

char Digit(std::uint32_t group, int shift) {
    return kAlphabet[group >> shift & 0x3F];
}

void StoreDigits(std::uint32_t group, char* to) {
    to[0] = Digit(group, 18);
    to[1] = Digit(group, 12);
    to[2] = Digit(group, 6);
    to[3] = Digit(group, 0);
}

}  // namespace

Progress DecodePlain(std::string_view text, unsigned char* to, std::size_t room, Progress done) {
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

Progress DecodeGroups(std::string_view text, unsigned char* to, std::size_t room) {
    const Progress done = HasVectorUnit() ? DecodeVector(text, to, room) : Progress();
    return DecodePlain(text, to, room, done);
}

std::size_t EncodePlain(const unsigned char* from, std::size_t size, char* to) {
    const std::size_t whole = size / 3 * 3;
    for (std::size_t at = 0; at < whole; at += 3, to += 4)
        StoreDigits(static_cast<std::uint32_t>(from[at] << 16 | from[at + 1] << 8 | from[at + 2]), to);
    if (whole == size) return size / 3 * 4;
    const bool two = size - whole == 2;
    StoreDigits(static_cast<std::uint32_t>(from[whole] << 16 | (two ? from[whole + 1] << 8 : 0)), to);
    if (!two) to[2] = '=';
    to[3] = '=';
    return size / 3 * 4 + 4;
}

std::size_t EncodeGroups(const unsigned char* from, std::size_t size, char* to) {
    const std::size_t taken = HasVectorUnit() ? EncodeVector(from, size, to) : 0;
    const std::size_t made = taken / 3 * 4;
    return made + EncodePlain(from + taken, size - taken, to + made);
}

}  // namespace base64

namespace {

constexpr std::size_t kPieceBytes = 3072;  // whole groups, and few enough of them to stay close to the processor

}  // namespace

unsigned int CBase64::CalcEnecodedSize(unsigned int size) {
    const unsigned int lines = size / wire::kBase64LineBytes;
    const unsigned int rest = size % wire::kBase64LineBytes * 4 / 3;
    return lines * wire::kBase64LineWithEnd + rest + 4 - rest % 4;
}

int CBase64::Encode(const unsigned char* data, unsigned int size, CString& text) {
    std::array<char, kPieceBytes / 3 * 4> piece;
    for (std::size_t at = 0; at < size; at += kPieceBytes) {
        const std::size_t used =
            base64::EncodeGroups(data + at, std::min<std::size_t>(size - at, kPieceBytes), piece.data());
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
