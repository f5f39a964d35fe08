// SaveLetter: a mail into a file or another place, whole or not at all. One thread, that of the engine.
#pragma once

#include <filesystem>
#include <hostkit/files/OutputTarget.h>
#include <hostkit/letter/Outcome.h>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Writes the message into a new file beside file, which takes its place when it is whole and on the disk; until then a
// file that stands there stays as it is, and behind a failure or a cancel nothing new stays. Links are followed; the
// owner, as far as this user may give it, and the permission bits are kept. Refused are a folder, a link to nothing, a
// file that may not be written and one of the mail's own attachments. A pipe or a device gets the message as it comes.
// An attachment that changes while it is read is a failure, which names it. doc is as it was when this returns.
// What others may refuse of a mail that was saved, its size or a line of it, is in the outcome's text.
HOSTKIT_API Outcome SaveLetter(CMailDoc& doc, const std::filesystem::path& file, const Progress& progress = {});

// The same to a target that was looked at before.
HOSTKIT_API Outcome SaveLetter(CMailDoc& doc, OutputTarget& target, const Progress& progress = {});

}  // namespace hostkit
