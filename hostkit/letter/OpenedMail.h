// OpenedMail: a stored message, opened. Any mail comes through the gateway (docs/gateway.md), so its values are what
// its sender wrote, in whatever charset and form. All texts are UTF-8, with U+FFFD for what is no text. One thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <hostkit/characters/Export.h>
#include <hostkit/gateway/Mailbox.h>
#include <string>
#include <vector>

namespace hostkit {

struct OpenOptions {
    // Where the attachments become new files; made if it is missing and there are any. Empty: they are listed alone.
    std::filesystem::path folder{};
    // The message goes to the parser as it is: one outside its dialect gives raw text, loses parts or is refused.
    bool strict = false;
};

// Values of a mail can hold any control character; LineShown and BodyShown (hostkit/characters/MailText.h) make them
// fit for a terminal.
struct OpenedMail {
    struct File {
        std::string name;            // by the rule of file names, unique in its mail; on disk it has the same
        std::string original;        // as the mail has it; empty where it has none
        std::filesystem::path path;  // empty: nobody asked for the file
        std::uintmax_t size = 0;     // bytes
        std::string type{};          // its media type; by its name where the mail says none, or octet-stream only
    };

    std::string subject, date, messageId, references;
    std::vector<Mailbox> from, to, cc, replyTo;
    std::string body;     // its lines end as they came, which is CRLF in most mails
    std::string header;   // the header block as it stands
    std::string summary;  // the header as people read it above a quoted mail, in CRLF: each value is one line, as
                          // LineShown has it, since a line end in it would show fields that the header does not have
    std::vector<File> files;

    bool gateway = false;                   // whether the message had to be rewritten for the parser
    std::size_t replaced = 0;               // characters that found no place, and are 〓 in the values
    std::vector<std::string> alternatives;  // media types of other forms of the text, which are not given
    std::vector<std::string> warnings;      // of what is not as it came, in sentences without full stop

    bool isMessage = true;  // false: it is empty, or does not begin with header fields; no value is there but the fault
    std::string fault;      // empty: all was read. Else why not, in one line that goes on from the message's name; the
                            // header's values are there all the same, body and files are not.
};

// Opens the message, which comes byte for byte as its store has it (ReadMessage, MessageSource). The attachments come
// into the folder whole, all or none; no file that stands there is replaced: the new one is called "name (1).txt" and
// so on. Throws Failure if a folder cannot be had.
HOSTKIT_API OpenedMail OpenMail(std::string message, const OpenOptions& options = {});

// The subject alone, without a look at the body unless strict, or the header has bytes of no declared charset; fault as
// above.
struct OpenedSubject {
    std::string subject, fault;
};
HOSTKIT_API OpenedSubject OpenSubject(std::string message, bool strict = false);

}  // namespace hostkit
