// CQuotedPrint: decoder of the transfer encoding quoted-printable (RFC 2045 6.7), also of the Q encoding of encoded
// words (RFC 2047 4.2). Stateless; any thread, any number of calls at once.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

class MAILENGINE_API CQuotedPrint {
public:
    CQuotedPrint() = delete;

    // Decodes text into buffer, of capacity bytes, owned by the caller; no NUL is added. written takes the number of
    // bytes. A soft line break ("=" CR LF) joins its lines; an underscore stays one. 0: buffer is null or capacity is
    // below the length of text, and written is 0. Bad digits are no failure: a pair counts as far as it is a hex
    // number.
    static int Decode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written);
};
