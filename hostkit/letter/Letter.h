// Letter: a mail as a user gives it, in labelled values of UTF-8. Any thread.
#pragma once

#include <filesystem>
#include <hostkit/characters/CodePage.h>
#include <optional>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

struct HOSTKIT_API Letter {
    // Addresses: 'name <user@host>' or user@host, one in each.
    std::optional<std::string> from, replyTo;
    std::vector<std::string> to, cc, bcc;
    std::optional<std::string> subject;  // one line, as all above
    // Many lines, with any line ends.
    std::optional<std::string> dear, greeting, body, closing, signature;
    // Of an answer: the message identifier of the mail that it answers, and those of the thread down to it, a blank
    // apart (RFC 5322 3.6.4). What is not printable ASCII is left out.
    std::optional<std::string> inReplyTo, references;
    std::string bodyFile;               // where the body came from, for a failure to name; empty: it was typed
    std::string mailer = "mailengine";  // the name of the mail program, plain ASCII
    std::vector<std::filesystem::path> attachments;
    bool senderBcc = false;             // a blind copy goes to the sender too
    bool upperReply = false;            // closing and signature stand above the quoted mail
    Missing missing = Missing::Refuse;  // what becomes of a character that a Japanese mail cannot carry

    // Puts all that was given into doc and leaves the rest of it; addresses and attachments are added to those that doc
    // has. Throws Failure for a text that cannot be carried, an address that is none, a file that cannot be read; doc
    // is then not to be used.
    void Fill(CMailDoc& doc) const;

    bool operator==(const Letter&) const = default;
};

}  // namespace hostkit
