// StoredMail: a stored message on its way into the parser, and what the values mean that the parser then gives. One
// thread.
#pragma once

#include <hostkit/gateway/Gateway.h>
#include <string>
#include <string_view>
#include <utility>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

class StoredMail {
public:
    // message comes byte for byte as its store has it. strict leaves the gateway out: the parser gets the message with
    // CRLF line ends, and makes of it what it can. Throws Failure for a message of 2 GiB or more.
    StoredMail(std::string message, bool strict, const std::string& name = {});

    // Whether it does not begin with header fields, and is something else: a picture, a text. Empty is no such thing,
    // and the parser alone asks for no fields.
    bool IsNone() const;
    // Why it is not to be read: the gateway refused it, it is no message, or has too many parts; empty if it is.
    std::string Refusal() const;
    // What the parser is to read.
    const CString& ForParser() const { return m_forParser; }
    // The parser has read it: the memory of message and block is free again, and all else stays.
    void Drop() {
        (void)std::exchange(m_forParser, CString());  // a plain assignment would keep the room
        (void)std::exchange(m_block, std::string());
    }
    // What the gateway told; nothing of a message that it did not get. The message itself is ForParser.
    const Passed& Gateway() const { return m_passed; }
    // Whether values are as this message's sender wrote them, and Gateway tells of Reply-To.
    bool IsPassed() const { return m_isPassed; }
    // The UTF-8 of a value, with U+FFFD for what is no text.
    std::string TextOf(std::string_view value) const;
    // The header block as it came, of a message that was rewritten.
    const std::string& Block() const { return m_block; }

private:
    void Pass(std::string message);

    CString m_forParser;
    Passed m_passed;
    std::string m_block;
    bool m_isPassed;
};

}  // namespace hostkit
