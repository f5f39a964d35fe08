// FinishedMail: a message that somebody else wrote, that goes out as it stands (SendLetter). One thread.
#pragma once

#include <hostkit/characters/Failure.h>
#include <optional>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

struct FinishedMail {
    std::string name;        // for failures: the file it came from
    std::string message;     // as it goes out: without the fields Bcc and Resent-Bcc, with CRLF at its line ends
    std::string unsendable;  // what a server need not take of it, in the user's language; empty: nothing
};

// Takes a message as it was written, and puts its envelope into doc: the sender is from, else the first mailbox of the
// field From, and stays empty where there is neither; the recipients are to, else those of the fields To, Cc and Bcc,
// in UTF-8. Throws Failure for what has no header or a broken one, holds a NUL, or has an address that no envelope can
// carry.
HOSTKIT_API FinishedMail TakeFinishedMail(std::string message, const std::string& name,
                                          const std::optional<std::string>& from, const std::vector<std::string>& to,
                                          CMailDoc& doc);

// Throws Failure, with line and byte of what was taken, for a message that a server need not take from this engine,
// which asks for no extension: one with a byte above 7F (RFC 6152 is one) or a line of more than 998 bytes (RFC
// 5321 2.3.8, 2.4, 4.5.3.1.6). Its kind is Unfit: this machine's mail system may know how to send it.
HOSTKIT_API void CheckSendable(const FinishedMail& mail);

}  // namespace hostkit
