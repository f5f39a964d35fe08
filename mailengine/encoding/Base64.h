// CBase64: the Base64 transfer encoding (RFC 2045 6.8). Stateless; any thread, any number of calls at once.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

class MAILENGINE_API CBase64 {
public:
    CBase64() = delete;

    // An estimate, a little high, of the bytes that size bytes take as lines of 72 characters with their CRLFs. It is
    // what progress counts against; no buffer is sized by it.
    static unsigned int CalcEnecodedSize(unsigned int size);

    // Appends the encoded form of size bytes to text, without line ends. size 0 appends nothing. data must not
    // lie inside text. Always 1.
    static int Encode(const unsigned char* data, unsigned int size, CString& text);

    // Decodes text into buffer, of capacity bytes, owned by the caller; no NUL is added. CR and LF between groups are
    // passed over, padding does not end the text, and a character outside the alphabet counts as 0 bits. A last group
    // of k characters that the end of text cuts short gives max(1, k - 1) bytes. written takes the number of bytes.
    // 0: buffer is null, capacity is below the length of text (nothing is written), or fewer than 3 bytes are left for
    // the next character (the buffer holds what was decoded); written is then 0.
    static int Decode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written);

private:
    static const char* const base64Table;
};
