// SendLetter: a mail on its way out. One thread, that of the engine.
#pragma once

#include <hostkit/letter/FinishedMail.h>
#include <hostkit/letter/Outcome.h>
#include <hostkit/outbox/MailProgram.h>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Sends the mail to its server: the recipients get all of it or nothing, each of them once. The Bcc field, and the
// sender's blind copy, stand in the envelope alone; doc has them again afterwards. Nothing is tried where CheckEnvelope
// would throw. Where the whole mail went out and no verdict came, the outcome is Unknown: sending it again may double
// it. A failure of the kind Login is a server that this machine's own mail system may know to talk to.
HOSTKIT_API Outcome SendLetter(CMailDoc& doc, const Progress& progress = {});

// The same through this machine's mail system, which knows about logins, encryption and queues; the server in doc does
// not matter. Done means that the mail stands in its queue, or is with a server. The message stands whole in the folder
// for temporary files before the program begins, and behind a cancel, or where this process ends, no half of it is
// sent: a cancel is Unknown where the program had read all and said nothing. What the program said is in the text; of
// the kinds of failure Program, Later, NoHost and Rights are told apart.
HOSTKIT_API Outcome SendLetter(CMailDoc& doc, const MailProgram& program, const Progress& progress = {});

// The same for a finished message: it goes as it stands, but for bare line ends, which become CRLF, to the recipients
// and the server in doc. Nothing is tried where CheckEnvelope or CheckSendable would throw.
HOSTKIT_API Outcome SendLetter(const FinishedMail& mail, CMailDoc& doc, const Progress& progress = {});

// The same through this machine's mail system, which takes what a server need not; a NUL alone is refused.
HOSTKIT_API Outcome SendLetter(const FinishedMail& mail, CMailDoc& doc, const MailProgram& program,
                               const Progress& progress = {});

}  // namespace hostkit
