// Attachment: a file of the user's as the library wants it. Stateless; any thread.
#pragma once

#include <filesystem>
#include <hostkit/files/OutputTarget.h>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// The attachment for the file at path. Throws Failure for what is no readable regular file, for a path that a mail
// cannot carry, and for a file name that would break out of its field in the message: the name goes between double
// quotes as it is (RFC 2183 2.3), so it may hold no double quote and no control character.
CMailDoc::FileInfo AttachmentOf(const std::filesystem::path& path);

// Throws Failure, in the system's words, for an attachment of the document that cannot be read now: one that is gone,
// or that another program holds a lock on.
void CheckAttachments(const CMailDoc& doc);

// Throws Failure for an attached mail, which goes out as it is, that holds a NUL: the library's text ends there, and
// all up to the end of the piece that was read would be missing from the message.
void CheckAttachedMails(const CMailDoc& doc);

// Throws Failure if one of the document's attachments is the file that target writes, whatever the spelling and the
// links.
void CheckAreNotTarget(const CMailDoc& doc, const OutputTarget& target);

}  // namespace hostkit
