// AttachedMail: a mail that is to go inside another. The engine puts it in as it stands, under 7bit (RFC 2046 5.2.1
// forbids Base64 for it), so only one that 7bit can carry (RFC 2045 2.7) may go in so. Stateless; any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <hostkit/files/Descriptors.h>
#include <string>
#include <string_view>

namespace hostkit {

// What stands in a message against 7bit: the first of its kind, and where.
struct Uncarriable {
    enum class What { Nothing, Nul, EightBit, LongLine } what = What::Nothing;
    std::uint64_t line = 0;    // from 1
    std::uint64_t offset = 0;  // from 0, of the byte, or of the first one of the line that is too many
};

// Looks at a message piece by piece, wherever it is cut. A line ends at CRLF, LF or CR.
class MessageForm {
public:
    static constexpr std::uint64_t kMaxLineBytes = 998;  // RFC 5322 2.1.1, without the line end

    void Take(std::string_view piece);

    // Whether a line ended in a bare LF or CR so far.
    bool HasBareEnds() const { return m_bBareEnds || m_bCr; }
    const Uncarriable& Fault() const { return m_fault; }

private:
    void TakeByte(unsigned char byte);
    void EndLine();
    void Note(Uncarriable::What what);

    Uncarriable m_fault;
    std::uint64_t m_nOffset = 0;
    std::uint64_t m_nLine = 1;
    std::uint64_t m_nLineBytes = 0;
    bool m_bCr = false;  // the last byte was a CR
    bool m_bBareEnds = false;
};

// The form of the file at path. Throws Failure, which names it, if it cannot be read.
MessageForm FormOf(const std::filesystem::path& path);

// "a NUL at byte 70", for a sentence; what is not Nothing.
std::string WordsFor(const Uncarriable& fault);

// Makes each bare CR and LF a CRLF, wherever the text is cut.
class LineEnds {
public:
    std::string Next(std::string_view piece);

private:
    bool m_bCr = false;
};

}  // namespace hostkit
