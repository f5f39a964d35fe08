// Envelope: what a mail server is told of a mail, and the way to it. One thread, that of the engine.
#pragma once

#include <cstdint>
#include <hostkit/letter/Outcome.h>
#include <string>
#include <string_view>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Sets the server from HOST, HOST:PORT or [ADDRESS]:PORT; an address of IPv6 without brackets is a host. Without a port
// it is 25 (RFC 5321 4.5.4.2). Throws Failure.
HOSTKIT_API void SetServer(std::string_view server, CMailDoc& doc);

// The mail addresses that the server will be told, in its order, in UTF-8. The sender is empty if there is none.
HOSTKIT_API std::string SenderOf(const CMailDoc& doc);
HOSTKIT_API std::vector<std::string> RecipientsOf(const CMailDoc& doc);

// Throws Failure for a mail without a sender, without a recipient, or with more than a server must take.
HOSTKIT_API void CheckEnvelope(const CMailDoc& doc);

// The bytes of the message. Throws Failure if it cannot be written.
HOSTKIT_API std::uint64_t MessageBytes(const CMailDoc& doc);

// Sends the mail to its server: the recipients get all of it or nothing. The outcome tells what the server said.
HOSTKIT_API Outcome SendLetter(const CMailDoc& doc, const Progress& progress = {});

}  // namespace hostkit
