// CParts: the parts of one multipart (RFC 2046 5.1.1), from its first delimiter to its closing one. Preamble and
// epilogue are none. One walk, one thread.
#pragma once

#include <string_view>

#include <mailengine/parser/FaultLog.h>
#include <mailengine/parser/Scanning.h>

namespace parser {

// What an entity reports of its place: where its header ends for the header scan, and where a walk goes on behind it.
struct Range {
    int top = -1;
    int end = -1;
};

struct Part {
    int number = 0;  // 1 for the first
    int top = 0;     // the end of its delimiter's line, mostly the CRLF in front of its fields
    int walked = 0;  // how far the walk came; the next delimiter is searched from there
};

class CParts {
public:
    // text is the entity's, start lies behind its Content-Type field. range takes the first delimiter that is none of
    // the closing ones, and at the end of the walk the line end of the last delimiter met.
    CParts(std::string_view text, int start, std::string_view parameters, Range& range, CFaultLog& faults);

    // Goes on to the part behind the next delimiter. false: the walk is over.
    bool Next(Part& part);
    // Whether it ended at the closing delimiter. Else it has recorded why not.
    bool Closed() const { return m_delimiter.last; }

    // The delimiter that ends a part, -1 if none does.
    int EndOf(const Part& part) { return m_delimiters.FindTop(part.top); }
    CDelimiters& Delimiters() { return m_delimiters; }

    // The walk of that part failed. Where it found no fault but that its end is missing, the multipart is not closed.
    // Always 0.
    int FailIn(const Part& part);

private:
    bool End(bool found, const Part& last);

    std::string_view m_text;
    CDelimiters m_delimiters;
    Delimiter m_delimiter;
    Range& m_range;
    CFaultLog& m_faults;
};

}  // namespace parser
