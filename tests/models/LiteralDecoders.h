// The decoders' rules read literally, one character at a time: what fuzzers and tests compare the decoders with.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <tests/models/Require.h>

#include <mailengine/encoding/Base64Stream.h>

using Decoder = int (*)(const CString&, unsigned char*, unsigned int, unsigned int&);

struct Decoded {
    int result = 0;
    std::string bytes;
    friend bool operator==(const Decoded&, const Decoded&) = default;
};

constexpr unsigned char kUntouched = 0xEE;

// Decodes into a buffer of exactly capacity bytes, which the sanitizer watches.
inline Decoded DecodeInto(Decoder decode, const CString& text, unsigned int capacity) {
    const auto buffer = std::make_unique<unsigned char[]>(capacity);
    unsigned int written = 12345;
    std::fill_n(buffer.get(), capacity, kUntouched);
    Decoded out;
    out.result = decode(text, buffer.get(), capacity, written);
    Require(written <= capacity, "no more bytes than the capacity");
    Require(out.result == 0 || std::count(buffer.get() + written, buffer.get() + capacity, kUntouched) ==
                                   static_cast<std::ptrdiff_t>(capacity - written),
            "nothing is touched behind the result");
    out.bytes.assign(reinterpret_cast<const char*>(buffer.get()), written);
    return out;
}

// One character at a time; a character outside the alphabet counts as 0 bits, a missing one as padding.
inline Decoded LiteralBase64(std::string_view text, std::size_t capacity) {
    static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto at = [&](std::size_t i) { return i < text.size() ? text[i] : '='; };
    const auto bits = [&](std::size_t i) {
        const std::size_t digit = kDigits.find(at(i));
        return digit == std::string_view::npos ? 0u : static_cast<unsigned int>(digit);
    };
    if (capacity < text.size()) return {};
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        if (capacity < out.size() + 3) return {};
        if (text[i] == '\r' || text[i] == '\n') {
            ++i;
            continue;
        }
        out += static_cast<char>(bits(i) << 2 | bits(i + 1) >> 4);
        if (at(i + 2) != '=') out += static_cast<char>((bits(i + 1) << 4 | bits(i + 2) >> 2) & 0xFF);
        if (at(i + 2) != '=' && at(i + 3) != '=') out += static_cast<char>((bits(i + 2) << 6 | bits(i + 3)) & 0xFF);
        i += 4;
    }
    return {1, out};
}

// strtoul itself decides about the digits: the reference is the C library's.
inline Decoded LiteralEscapes(std::string_view text, std::size_t capacity, char escape, bool softLineBreaks) {
    if (capacity < text.size()) return {};
    std::string out;
    char digits[3] = {};
    int count = -1;  // -1: outside an escape
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == escape) {
            count = 0;
        } else if (count < 0) {
            out += c;
        } else if (softLineBreaks && c == '\r') {
            count = -1;
            ++i;
        } else {
            digits[count++] = c;
            if (count == 2) out += static_cast<char>(std::strtoul(digits, nullptr, 16) & 0xFF);
            if (count == 2) count = -1;
        }
    }
    return {1, out};
}

// Decodes Base64 in pieces of step characters, each into a buffer of just the promised room.
inline Decoded DecodeInPieces(std::string_view text, std::size_t step) {
    CBase64Stream stream;
    Decoded out;
    for (; !text.empty(); text.remove_prefix(std::min(step, text.size()))) {
        const std::string_view piece = text.substr(0, step);
        const auto buffer = std::make_unique<unsigned char[]>(CBase64Stream::MaxBytes(piece.size()));
        out.bytes.append(reinterpret_cast<const char*>(buffer.get()), stream.Decode(piece, buffer.get()));
    }
    unsigned char last[CBase64Stream::kLastBytes];
    std::size_t written = 0;
    out.result = stream.Finish(last, written);
    if (out.result == 0) out.bytes.clear();
    out.bytes.append(reinterpret_cast<const char*>(last), written);
    return out;
}
