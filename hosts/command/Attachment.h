// Attachment: a file of the user's as the library wants it.
#pragma once

#include <string>

#include <mailengine/model/MailDoc.h>

#include "OutputTarget.h"

// The attachment for the file at path, native UTF-8. Throws CFailure for what is no readable regular file, for a path
// that code page 932 cannot hold, and for a file name that would break out of its field in the message: the name goes
// between double quotes as it is (RFC 2183 2.3), so it may hold no double quote and no control character.
CMailDoc::FileInfo AttachmentOf(const std::string& path);

// Throws CFailure if the file at path is the one that target writes, whatever the spelling and the links.
void CheckIsNotTarget(const std::string& path, const COutputTarget& target);
