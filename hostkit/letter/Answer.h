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
    Audience audience = Audience::All;
    // The user's own mail addresses (user@host, in any case), which get no answer. One to a mail of their own goes to
    // its recipients.
    std::vector<std::string> own{};
    std::string name{};   // of the answered mail, for a failure
    bool strict = false;  // the answered mail is read as OpenOptions say, and its Reply-To is not looked at
};

// Makes doc, which is new, the answer to the message, which comes byte for byte as its store has it: its recipients
// (Reply-To in place of the sender, where it has one), subject with "Re: ", thread, and the old mail quoted below its
// summary; then letter is filled in, its body beside the quoted mail. What a Japanese mail cannot carry of the old mail
// becomes 〓. The result warns of each address that is left out, because it could not be sent to, and of how many
// characters were lost. Throws Failure.
HOSTKIT_API std::vector<std::string> PrepareAnswer(std::string message, const Letter& letter, CMailDoc& doc,
                                                   const AnswerOptions& options = {});

}  // namespace hostkit
