// CReplyReader: puts the replies of an SMTP server together from bytes as they come, wherever the network cut them. A
// reply is one line or several (RFC 5321 4.2.1); several that come at once are given out one by one, in their order.
//
// A line is a code of three digits, the first of them 2 to 5 (RFC 5321 4.2.1; nothing in SMTP is answered by another),
// and then its end, or a blank and text, or a hyphen and text where more lines of the reply follow. All lines of a
// reply have one code. Text may hold any byte, but for the LF that ends it. What is no such line - an empty one, a code
// below 200 or above 599, one of fewer digits - is no reply, and nothing behind it can be told to be one.
#pragma once

#include <string>
#include <string_view>

struct ServerReply {
    int code = 0;      // 200 to 599
    std::string text;  // all lines with their codes, each with a CRLF; the server's bytes
};

class CReplyReader {
public:
    // A reply longer than this, line ends included, is not taken. RFC 5321 4.5.3.1.5 gives a line 512 bytes, and a
    // reply as many lines as it likes.
    static constexpr std::size_t kMaxReplyBytes = 65536;

    enum State { kIncomplete, kWhole, kMalformed, kTooLong };

    // Takes what came next.
    void Take(std::string_view bytes) { m_bytes += bytes; }
    // Whether every byte that came was given out as part of a reply.
    int IsEmpty() const { return m_bytes.empty(); }
    // kWhole: reply is the next one, and counts as given out. kIncomplete: more must come first. Else the bytes are no
    // reply, or a reply too long, and the reader is of no more use. reply is touched by kWhole alone.
    State Next(ServerReply& reply);

private:
    State TakeLine(std::string_view line);
    void GiveOut(ServerReply& reply);

    std::string m_bytes;         // came and were not given out
    std::size_t m_lineTop = 0;   // the first line of them that has not been looked at as a whole
    std::size_t m_searched = 0;  // no line end lies between that and this
    std::string m_text;          // the lines in front of it
};
