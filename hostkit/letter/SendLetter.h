// SendLetter: a mail on its way out. One thread, that of the engine.
#pragma once

#include <hostkit/letter/Outcome.h>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Sends the mail to its server: the recipients get all of it or nothing, each of them once. The Bcc field, and the
// sender's blind copy, stand in the envelope alone; doc has them again afterwards. Nothing is tried where CheckEnvelope
// would throw. Where the whole mail went out and no verdict came, the outcome is Unknown: sending it again may double
// it. A failure of the kind Login is a server that this machine's own mail system may know to talk to.
HOSTKIT_API Outcome SendLetter(CMailDoc& doc, const Progress& progress = {});

}  // namespace hostkit
