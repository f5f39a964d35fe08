// Answer: a mail that answers another. Decoded values of the answered mail can hold CR, LF and NUL, and stand in
// charsets that a Japanese mail does not carry: no value of it can add a header field to the answer or a command to the
// dialogue that sends it, and all its text can be carried. One thread.
#pragma once

#include <hostkit/letter/Letter.h>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

enum class Audience {
    Sender,  // who wrote the mail
    All,     // its other recipients too, in Cc
};

struct AnswerOptions {
    Audience audience = Audience::Sender;
    // The user's own mail addresses (user@host, in any case) beside that of the letter's From.
    std::vector<std::string> own{};
    std::string name{};   // of the answered mail, for a failure
    bool strict = false;  // the answered mail is read as OpenOptions say
};

// Makes doc, which is new, the answer to the message, which comes byte for byte as its store has it: its recipients,
// subject with "Re: ", thread, and the old mail quoted below its summary; then letter is filled in, its body beside the
// quoted mail, its recipients behind those of the answer.
//
// The answer goes to Reply-To, where the mail has one, else to From (RFC 5322 3.6.2); with Audience::All the recipients
// of the mail are in Cc. The user's own addresses get none. The answer to a mail of the user's own goes to those that
// it went to: To as it was, and with All Cc too. To and Cc name each mailbox once, at its first place; those that
// differ in the case of their local part are two.
//
// What a Japanese mail cannot carry of the old mail becomes 〓. The result warns of each address that is left out,
// because it could not be sent to, and of how many characters were lost. Throws Failure.
HOSTKIT_API std::vector<std::string> PrepareAnswer(std::string message, const Letter& letter, CMailDoc& doc,
                                                   const AnswerOptions& options = {});

// The same as a letter that a user may go on with: to, cc, subject, body and thread are those of the answer, all else
// is as letter has it. What PrepareAnswer makes is what this letter's Fill makes of a new document.
struct PreparedAnswer {
    Letter letter;
    std::vector<std::string> warnings;
};
HOSTKIT_API PreparedAnswer AnswerOf(std::string message, const Letter& letter, const AnswerOptions& options = {});

}  // namespace hostkit
