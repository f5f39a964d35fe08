// Attachment: a file of the user's as the library wants it. Stateless; any thread.
#pragma once

#include <filesystem>
#include <hostkit/files/OutputTarget.h>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// The attachment for the file at path, whatever path code page 932 can hold: what it cannot is spelled, and
// CarriedFiles gives the message the name. Throws Failure for what is no readable regular file, and for a name that a
// mail cannot carry (CarriedName).
CMailDoc::FileInfo AttachmentOf(const std::filesystem::path& path);

// The name of the file at path as its mail carries it, by the rules of a subject (ToCodePage); one whose letters stand
// apart from their accents, as another system writes names, is put together (Unicode's form C). Throws Failure for
// characters that a Japanese mail has not, and for a double quote or a control character: the name goes between double
// quotes as it is (RFC 2183 2.3).
CString CarriedName(const std::filesystem::path& path);

// Throws Failure, in the system's words, for a file that cannot be attached now: one that is gone, or that another
// program holds a lock on; and for the first such attachment of the document.
void CheckAttachable(const std::filesystem::path& path);
void CheckAttachments(const CMailDoc& doc);

// Throws Failure if one of the document's attachments is the file that target writes, whatever the spelling and the
// links.
void CheckAreNotTarget(const CMailDoc& doc, const OutputTarget& target);

}  // namespace hostkit
