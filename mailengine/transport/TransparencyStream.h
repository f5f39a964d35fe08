// CTransparencyStream: stands between the message writer and a stream to a server, and makes any text fit to be mail
// data. A dot at a line top is doubled (RFC 5321 4.5.2), so that no line of the mail can end it. A bare CR or a bare LF
// goes out as CRLF: neither may be sent (RFC 5321 2.3.8), strict servers refuse the mail for one, and lax ones can be
// made to see an end of the data where there is none. All other bytes pass untouched. How the text is cut into calls
// makes no difference, not even between a CR and its LF, and nothing is held back from one call to the next.
#pragma once

#include <mailengine/support/platform/text/String.h>
#include <mailengine/writer/OutputStream.h>

class CTransparencyStream : public COutputStream {
public:
    // target is lent and must outlive this object.
    explicit CTransparencyStream(COutputStream& target) : m_target(target) {}
    CTransparencyStream(const CTransparencyStream&) = delete;
    CTransparencyStream& operator=(const CTransparencyStream&) = delete;

    // Opens the target; the mail's first byte is at a line top.
    [[nodiscard]] int Open() override;
    // Closes the target, with whatever that means there; adds nothing to the text, also behind a line that has no end.
    void Close() override { m_target.Close(); }
    // Takes the bytes of text up to its NUL. 0: at least one of the target's writes failed; the rest was written all
    // the same, as the target would do with text of its own.
    [[nodiscard]] int WriteString(const char* text) override;

private:
    COutputStream& m_target;
    int m_bLineTop = 1;  // the next byte begins a line
    int m_bPassLf = 0;   // the last byte was a CR, which went out as CRLF
};
