// COutputStream: where a mail goes, be it a file or a server. The writer calls WriteString only; whoever made the
// stream opens and closes it. One stream, one thread. Text is code page 932 bytes.
#pragma once

#include <mailengine/support/platform/base/Export.h>

class MAILENGINE_API COutputStream {
public:
    COutputStream() = default;
    COutputStream(const COutputStream&) = default;
    COutputStream& operator=(const COutputStream&) = default;
    virtual ~COutputStream() = default;

    // Makes the stream ready. Opening an open stream succeeds and does nothing. 0: not ready.
    [[nodiscard]] virtual int Open() = 0;
    // Ends the stream. Closing a closed stream does nothing. There is no result: ask the concrete class for its error.
    virtual void Close() = 0;
    // Takes the bytes of text up to its NUL, unchanged: no line end is translated, and a NUL cannot travel. text stays
    // the caller's; null is an empty text. 0: the stream is not open, or the file or server failed; earlier bytes stay
    // where they went.
    [[nodiscard]] virtual int WriteString(const char* text) = 0;
};
