// OpenedMail: a stored message, opened. All texts are UTF-8, with U+FFFD for what is no text. One thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>
#include <vector>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

struct MailAddress {
    std::string name;     // empty: it has none
    std::string address;  // user@host
};

// Values of a mail can hold any control character; LineShown and BodyShown (hostkit/characters/MailText.h) make them
// fit for a terminal.
struct OpenedMail {
    struct File {
        std::string name;            // for people
        std::filesystem::path path;  // empty: nobody asked for the file
        std::uintmax_t size = 0;
    };

    std::string subject, date, messageId, references;
    std::vector<MailAddress> from, to, cc, replyTo;
    std::string body;     // its lines end as they came, which is CRLF in most mails
    std::string header;   // the header block as it stands
    std::string summary;  // the header as people read it above a quoted mail, in CRLF: each value is one line, as
                          // LineShown has it, since a line end in it would show fields that the header does not have
    std::vector<File> files;
    std::string fault;  // empty: all was read. Else why not, in one line that goes on from the message's name; the
                        // header's values are there all the same, body and files are not.
};

// Opens mail, which ReadMessage or MessageOf gave. The attachments become new files in folder, under clean names (see
// hostkit/files/FileName.h): all of them, each whole, or none. The folder is made if it is missing and there is
// something to put into it; no file that stands there is replaced. Without a folder the attachments are listed with
// name and size alone. A message of more parts than kMaxParts is not read. Throws Failure if a folder cannot be had.
HOSTKIT_API OpenedMail OpenMail(const CString& mail, const std::filesystem::path& folder = {});

}  // namespace hostkit
