// DeliveryWords: what came of a session with a server, in words for the user. Stateless; any thread.
#pragma once

#include <hostkit/characters/Failure.h>
#include <string>

#include <mailengine/model/MailDoc.h>
#include <mailengine/transport/MailSendRecv.h>

namespace hostkit {

// The text of a result on one line of UTF-8: the library's own, the server's words as they came, bytes that are no
// UTF-8 spelled, and behind these what the system's number means for the server of doc. Empty for a text that is empty.
std::string ReasonOf(const CMailSendRecv::Result& result, const CMailDoc& doc);

// The kind of failure that a mail is which was not taken: Login where the server asks for a login or encryption, which
// the engine does not have (530, 534, RFC 4954 6; 538); NoHost; Later for a reply 4yz (RFC 5321 4.2.1) and a connection
// that failed; else Delivery.
FailureKind KindOf(const CMailSendRecv::Result& result);

}  // namespace hostkit
