// DeliveryWords: what came of a session with a server, in words for the user. Stateless; any thread.
#pragma once

#include <string>

#include <mailengine/model/MailDoc.h>
#include <mailengine/transport/MailSendRecv.h>

namespace hostkit {

// The text of a result on one line of UTF-8: the library's own, the server's words as they came, bytes that are no
// UTF-8 spelled, and behind these what the system's number means for the server of doc. Empty for a text that is empty.
std::string ReasonOf(const CMailSendRecv::Result& result, const CMailDoc& doc);

// Whether the server asks for a login or encryption, which the engine does not have.
bool AsksForLogin(const CMailSendRecv::Result& result);

}  // namespace hostkit
