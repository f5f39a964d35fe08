// HexEscapes: the one decoder behind quoted-printable (RFC 2045 6.7) and percent-hex (RFC 2231 4), which differ in
// their escape character and in the soft line break. Internal to the codecs; stateless.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <mailengine/support/platform/text/String.h>

namespace hexescapes {

struct QuotedPrintable {
    static constexpr char kEscape = '=';
    static constexpr bool kSoftLineBreaks = true;
};

struct PercentHex {
    static constexpr char kEscape = '%';
    static constexpr bool kSoftLineBreaks = false;
};

// The value of a hex digit, -1 if c is none.
constexpr int DigitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

constexpr bool IsWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The low byte of the number that the two characters give when they are read as hex text: white space in front is
// passed over, a sign counts, and the first character that is no digit ends the number. A broken
// escape thus gives a byte too, and never ends a text.
constexpr unsigned char ByteOf(char first, char second) {
    const int high = DigitOf(first), low = DigitOf(second);
    if (high >= 0) return static_cast<unsigned char>(low >= 0 ? high << 4 | low : high);
    if (low < 0) return 0;
    if (first == '-') return static_cast<unsigned char>(-low);
    return static_cast<unsigned char>(first == '+' || IsWhiteSpace(first) ? low : 0);
}

// Decodes a text that comes in pieces of any length; the pieces' bytes together are those of the whole text. One text,
// one object.
template <class Form>
class Decoder {
public:
    // to has room for as many bytes as piece has: no step writes more than it reads. The result is the bytes written.
    // An escape that the piece does not end waits for the next one, and the end of the text gives it up.
    std::size_t Decode(std::string_view piece, unsigned char* to) {
        std::size_t made = 0;
        while (!piece.empty()) {
            if (m_state != State::kPlain) {
                made += DecodeEscape(piece, to + made);
                continue;
            }
            const std::size_t run = PlainBytes(piece);
            std::memcpy(to + made, piece.data(), run);
            made += run;
            piece.remove_prefix(run);
            if (piece.size() >= 3 && IsDigit(piece[1]) && IsDigit(piece[2])) {  // a whole one
                to[made++] = ByteOf(piece[1], piece[2]);
                piece.remove_prefix(3);
            } else if (!piece.empty()) {
                m_state = State::kEscape;
                piece.remove_prefix(1);
            }
        }
        return made;
    }

private:
    // kEscape: an escape character was seen; kDigit: and one character behind it, which m_first holds; kLineFeed: the
    // CR of a soft line break, with which the next byte goes.
    enum class State { kPlain, kEscape, kDigit, kLineFeed };

    static std::size_t PlainBytes(std::string_view text) {
        const std::size_t escape = text.find(Form::kEscape);
        return escape == std::string_view::npos ? text.size() : escape;
    }

    // Whether it counts as a digit behind an escape character, be it one or not.
    static bool IsDigit(char c) { return c != Form::kEscape && !(Form::kSoftLineBreaks && c == '\r'); }

    // Takes what belongs to the escape from the top of piece. An escape character inside starts anew. The result is
    // the bytes written, 0 or 1.
    std::size_t DecodeEscape(std::string_view& piece, unsigned char* to) {
        while (!piece.empty()) {
            const char c = piece.front();
            piece.remove_prefix(1);
            if (m_state == State::kLineFeed) {
                m_state = State::kPlain;
                return 0;
            }
            if (c == Form::kEscape) {
                m_state = State::kEscape;
            } else if (!IsDigit(c)) {
                m_state = State::kLineFeed;
            } else if (m_state == State::kDigit) {
                *to = ByteOf(m_first, c);
                m_state = State::kPlain;
                return 1;
            } else {
                m_first = c;
                m_state = State::kDigit;
            }
        }
        return 0;
    }

    State m_state = State::kPlain;
    char m_first = 0;
};

template <class Form>
int Decode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written) {
    written = 0;
    if (buffer == nullptr || capacity < text.View().size()) return 0;
    written = static_cast<unsigned int>(Decoder<Form>().Decode(text.View(), buffer));
    return 1;
}

}  // namespace hexescapes
