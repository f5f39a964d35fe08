// HeaderValues: what the parser reads in the header of a message and keeps for a summary or an answer. Its values are
// decoded: they can hold any character, line ends and NUL too. One thread.
#pragma once

#include <functional>
#include <hostkit/characters/Export.h>
#include <string_view>

#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace hostkit {

struct HeaderValues {
    CStringArray from, to, cc, replyTo;
    CString messageId, references, subject, date;
    CString block;  // the header block as it stands
};

// Those of mail, which has CRLF line ends.
HeaderValues HeaderOf(const CString& mail);

// The names of the attachments, as far as mail can be walked. No file is written.
CStringArray AttachmentNames(const CString& mail);

// Makes one line of a value: a line end in it would show fields that the header does not have, or words that its sender
// never read.
using AsLine = std::function<CString(std::string_view)>;

// The header as people read it above a quoted mail, a line for each field, in CRLF. The names are lines already.
CString SummaryOf(const HeaderValues& values, const CStringArray& fileNames, const AsLine& asLine);

}  // namespace hostkit
