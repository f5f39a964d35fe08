// OpenedMail: a message as the command opened it, and how it is shown.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/platform/text/StringArray.h>

struct OpenedMail {
    struct File {
        CString name;      // for people
        std::string path;  // empty if the file is gone
        std::uintmax_t size = 0;
    };

    CMailDoc doc;
    std::vector<File> files;
    // What the parser reads in the header and keeps for a summary or a reply.
    CStringArray from, to, cc;
    CString messageId, references, date;
    CString header;     // the header block as it stands
    std::string fault;  // empty: all was read
};

// Opens mail into opened. The attachments become files in folder, the user's, or, where it is null, in a folder that
// is gone when this returns. Throws CFailure if a folder cannot be had.
void OpenMail(const CString& mail, const std::string* folder, OpenedMail& opened);

// The mail for people: the summary of its header, or the header block if that is asked for, body, attachments.
std::string ShownMail(const OpenedMail& opened, bool headers);
// The mail as one JSON object on one line (RFC 8259), plain for a terminal too; file is the message's name.
std::string JsonOfMail(const OpenedMail& opened, bool headers, const std::string& file);
