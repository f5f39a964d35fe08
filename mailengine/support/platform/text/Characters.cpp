#include <algorithm>
#include <cstring>

#include <mailengine/support/platform/text/Characters.h>

namespace platform {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Up to this length a needle is compared at each place where its first byte stands; a longer one goes to
// memmem, whose cost does not grow with the product of both lengths.
constexpr std::size_t kShortNeedle = 16;

// The search looks through windows that double from 256 bytes to 64 KiB and asks for a NUL only in what it passed:
// so a match or a NUL close by costs no look at the rest of a long text.
constexpr std::size_t kFirstWindow = 256;
constexpr std::size_t kLargestWindow = 65536;

unsigned char ByteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

std::size_t OffsetIn(std::string_view text, const void* found) {
    return found == nullptr ? kNone : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

std::size_t FindByte(std::string_view text, std::size_t from, char byte) {
    if (from >= text.size()) return kNone;
    return OffsetIn(text, std::memchr(text.data() + from, ByteAt({&byte, 1}, 0), text.size() - from));
}

std::size_t FindBytes(std::string_view text, std::size_t from, std::string_view needle) {
    if (needle.size() == 1) return FindByte(text, from, needle[0]);
    if (needle.size() > text.size() || from > text.size() - needle.size()) return kNone;
    if (needle.size() > kShortNeedle)
        return OffsetIn(text, memmem(text.data() + from, text.size() - from, needle.data(), needle.size()));
    const std::string_view tops = text.substr(0, text.size() - needle.size() + 1);
    for (std::size_t at = FindByte(tops, from, needle[0]); at != kNone; at = FindByte(tops, at + 1, needle[0]))
        if (std::memcmp(text.data() + at + 1, needle.data() + 1, needle.size() - 1) == 0) return at;
    return kNone;
}

// Every lead byte is a trail byte too, so the lead bytes in front of a byte pair up from their first one on,
// and an odd number of them takes the byte as its trail byte.
bool IsCharacterTop(std::string_view text, std::size_t at) {
    if (!IsTrailByte(ByteAt(text, at))) return true;
    std::size_t leads = 0;
    while (leads < at && IsLeadByte(ByteAt(text, at - leads - 1)))
        ++leads;
    return leads % 2 == 0;
}

// A needle that ends in a lead byte alone must not match the first half of a character.
bool EndsInsideCharacter(std::string_view text, std::size_t at, std::string_view needle) {
    const std::size_t last = needle.size() - 1;
    return IsLeadByte(ByteAt(needle, last)) && IsCharacterTop(needle, last) && CharacterBytes(text, at + last) == 2;
}

constexpr unsigned char LowerAscii(unsigned char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

std::string_view TextOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

}  // namespace

std::size_t FindText(std::string_view text, std::string_view needle, std::size_t from) {
    if (needle.empty()) return from <= text.size() ? from : kNone;
    std::size_t at = FindBytes(text, from, needle);
    while (at != kNone && (!IsCharacterTop(text, at) || EndsInsideCharacter(text, at, needle)))
        at = FindBytes(text, at + 1, needle);
    return at;
}

std::size_t FindTextBeforeNul(std::string_view text, std::string_view needle) {
    // A long needle is prepared anew for each window, so the windows grow with it.
    const std::size_t largest = std::max(kLargestWindow, 4 * needle.size());
    std::size_t top = 0;
    for (std::size_t window = kFirstWindow;; window = std::min(window * 2, largest)) {
        const std::size_t end = std::min(text.size(), top + window);
        std::size_t found = FindText(text.substr(0, end + needle.size()), needle, top);
        // A match at the window's end cannot see the byte behind it, which may be a trail byte: the next window can.
        if (found == end && end < text.size()) found = kNone;
        const std::size_t passed = found == kNone ? end : found + needle.size();
        // An empty view may have no bytes to point at.
        if (passed > top && std::memchr(text.data() + top, 0, passed - top) != nullptr) return kNone;
        if (found != kNone || end == text.size()) return found;
        top = end;
    }
}

std::size_t FindLastCharacter(std::string_view text, char ch) {
    for (std::size_t at = text.rfind(ch); at != kNone; at = at == 0 ? kNone : text.rfind(ch, at - 1))
        if (IsCharacterTop(text, at) && CharacterBytes(text, at) == 1) return at;
    return kNone;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t at = 0; at < a.size();) {
        const std::size_t bytes = CharacterBytes(a, at);
        if (bytes != CharacterBytes(b, at)) return false;
        if (bytes == 1 ? LowerAscii(ByteAt(a, at)) != LowerAscii(ByteAt(b, at)) : a.substr(at, 2) != b.substr(at, 2))
            return false;
        at += bytes;
    }
    return true;
}

int mbscmp(const char* a, const char* b) {
    return TextOf(a).compare(TextOf(b));
}

int mbsicmp(const char* a, const char* b) {
    return EqualIgnoringCase(TextOf(a), TextOf(b)) ? 0 : 1;
}

}  // namespace platform
