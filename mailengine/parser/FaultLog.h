// CFaultLog: keeps the first fault of one run of the parser. The step that meets it records it, and each multipart and
// attached mail around adds its place while the run ends, so that a message that can be read pays nothing. All
// operations give 0, the result of a step that failed. One run, one thread.
#pragma once

#include <string_view>

#include <mailengine/parser/MailFault.h>

namespace parser {

class CFaultLog {
public:
    // Of the message text, into which all views given later point. Nothing is kept where fault is null.
    CFaultLog(std::string_view text, MailFault* fault) : m_text(text), m_pFault(fault) {}

    // from begins where the fault lies and ends with its entity.
    int Record(MailFault::Kind kind, std::string_view from, std::string_view name = {}, int error = 0);
    bool HasFault() const { return m_pFault != nullptr && m_pFault->kind != MailFault::Kind::kNone; }
    // What was recorded lies in that part; in the mail attached there.
    int InPart(int number) { return In(number); }
    int InAttachedMail() { return In(0); }
    // The run is over.
    void Close();

private:
    int In(int step);

    std::string_view m_text;
    MailFault* m_pFault;
};

}  // namespace parser
