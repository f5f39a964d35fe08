// HexEscapes: the one decoder behind quoted-printable (RFC 2045 6.7) and percent-hex (RFC 2231 4), which differ in
// their escape character and in the soft line break. Internal to the codecs; stateless.
#pragma once

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

template <class Form>
class Decoder {
public:
    // to has room for as many bytes as text has: no step writes more than it reads. The result is the bytes written.
    static std::size_t Decode(std::string_view text, unsigned char* to) {
        std::size_t made = 0;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t run = PlainBytes(text.substr(at));
            std::memcpy(to + made, text.data() + at, run);
            made += run;
            at += run;
            if (at < text.size()) at = DecodeEscape(text, at + 1, to, made);
        }
        return made;
    }

private:
    static std::size_t PlainBytes(std::string_view text) {
        const std::size_t escape = text.find(Form::kEscape);
        return escape == std::string_view::npos ? text.size() : escape;
    }

    // at lies behind an escape character; the result lies behind what the escape takes. An escape character inside
    // starts anew, and the end of the text gives the escape up.
    static std::size_t DecodeEscape(std::string_view text, std::size_t at, unsigned char* to, std::size_t& made) {
        char first = 0;
        for (int digits = 0; at < text.size(); ++at) {
            const char c = text[at];
            if (c == Form::kEscape) {
                digits = 0;
            } else if (Form::kSoftLineBreaks && c == '\r') {
                return at + 2;  // the LF goes with its CR
            } else if (digits == 1) {
                to[made++] = ByteOf(first, c);
                return at + 1;
            } else {
                first = c;
                digits = 1;
            }
        }
        return at;
    }
};

template <class Form>
int Decode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written) {
    written = 0;
    if (buffer == nullptr || capacity < text.View().size()) return 0;
    written = static_cast<unsigned int>(Decoder<Form>::Decode(text.View(), buffer));
    return 1;
}

}  // namespace hexescapes
