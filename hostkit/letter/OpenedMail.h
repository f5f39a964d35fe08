// OpenedMail: a stored message, opened. One thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace hostkit {

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

// Opens mail (with CRLF line ends) into opened. The attachments become files in folder, the user's, or, where it is
// null, in a folder that is gone when this returns. Throws Failure if a folder cannot be had.
HOSTKIT_API void OpenMail(const CString& mail, const std::filesystem::path* folder, OpenedMail& opened);

// The summary of the header for a screen, in UTF-8 with LF, each value on its line: a decoded line end would show lines
// that the header does not have.
HOSTKIT_API std::string SummaryShown(const OpenedMail& opened);

}  // namespace hostkit
