// CBase64Stream: decodes a Base64 text that comes in pieces, with the result of CBase64::Decode on the whole text and
// a capacity of its length plus 1. For parts too large to stand in memory twice. One text, one object, one thread.
#pragma once

#include <cstddef>
#include <string_view>

class CBase64Stream {
public:
    // The most bytes that a piece of so many characters can give, together with what earlier pieces left over.
    static constexpr std::size_t MaxBytes(std::size_t characters) { return (characters + 3) / 4 * 3; }
    // The most bytes that Finish can give.
    static constexpr std::size_t kLastBytes = 2;
    // Whether a whole text of so many characters is refused: one character has no room for a group.
    static constexpr bool Refuses(std::size_t characters) { return characters == 1; }

    // Decodes the next piece, of any length, into buffer, which has room for MaxBytes(piece.size()). The result is the
    // number of bytes written. A group that the piece does not complete waits for the next one.
    std::size_t Decode(std::string_view piece, unsigned char* buffer);

    // Ends the text: puts the bytes of a last group cut short, at most kLastBytes, into buffer and their number into
    // written. 0: the whole text is refused; written is 0.
    int Finish(unsigned char* buffer, std::size_t& written);

private:
    std::size_t CompleteGroup(std::string_view& piece, unsigned char* buffer);

    char m_waiting[4] = {};  // the head of a group whose rest is to come
    std::size_t m_nWaiting = 0;
    std::size_t m_nTextLength = 0;
};
