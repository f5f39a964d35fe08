// Envelope: what a mail server is told of a mail. One thread, that of the engine.
#pragma once

#include <cstdint>
#include <hostkit/characters/Failure.h>
#include <string>
#include <string_view>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// Sets the server from HOST, HOST:PORT or [ADDRESS]:PORT; an address of IPv6 without brackets is a host. Without a port
// it is 25 (RFC 5321 4.5.4.2). Throws Failure.
HOSTKIT_API void SetServer(std::string_view server, CMailDoc& doc);

// The mail addresses that the server will be told, in its order, each once, in UTF-8. The sender is empty if there is
// none.
HOSTKIT_API std::string SenderOf(const CMailDoc& doc);
HOSTKIT_API std::vector<std::string> RecipientsOf(const CMailDoc& doc);

// Throws Failure for a mail without a sender, without a recipient, or with more than a server must take.
HOSTKIT_API void CheckEnvelope(const CMailDoc& doc);

// Throws Failure, of the kind Value, for a message of more than limit bytes. Attachments that are far from it are not
// read.
HOSTKIT_API void CheckSize(CMailDoc& doc, std::uint64_t limit);
HOSTKIT_API void CheckSize(std::uint64_t bytes, std::uint64_t limit);
inline constexpr std::uint64_t kDefaultLimit = std::uint64_t{2} << 30;  // what mail programs can read

// The bytes of the message as its recipients get it, without the blind copies. Throws Failure if it cannot be written.
HOSTKIT_API std::uint64_t MessageBytes(CMailDoc& doc);

}  // namespace hostkit
