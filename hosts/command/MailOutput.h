// MailOutput: the last step of every command that makes a mail.
#pragma once

#include <mailengine/model/MailDoc.h>

#include "OutputTarget.h"

// Writes doc to target, whole. Throws CFailure; a file is then as it was. A line on stderr warns of a mail that this
// system could not read again.
void WriteMail(CMailDoc& doc, COutputTarget& target);
