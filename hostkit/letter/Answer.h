// Answer: a mail that answers another. Decoded values of the answered mail can hold CR, LF and NUL, and stand in
// charsets that a Japanese mail does not carry: no value of it can add a header field to the answer or a command to the
// dialogue that sends it, and all its text can be carried. One thread.
#pragma once

#include <hostkit/letter/Letter.h>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Makes doc, which is new, the answer to mail (with CRLF line ends): its recipients, subject with "Re: ", thread, and
// the old mail quoted, filled by what letter was given. What a Japanese mail cannot carry of the old mail becomes 〓;
// addresses that could not be sent to are left out, with a warning for each. name names the mail in a failure. Throws
// Failure.
HOSTKIT_API void PrepareAnswer(const CString& mail, const std::string& name, const Letter& letter, CMailDoc& doc,
                               std::vector<std::string>& warnings);

}  // namespace hostkit
