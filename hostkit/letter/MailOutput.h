// MailOutput: a mail on its way to a place. One thread.
#pragma once

#include <hostkit/files/OutputTarget.h>
#include <string>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Writes doc to target, whole. Gives a warning for the user, empty if there is none: that this system could not read
// the mail again, and why. Throws Failure; a file is then as it was.
HOSTKIT_API std::string WriteMail(CMailDoc& doc, OutputTarget& target);

}  // namespace hostkit
