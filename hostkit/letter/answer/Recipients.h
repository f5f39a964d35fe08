// Recipients: to whom an answer goes. One thread, that of the engine.
#pragma once

#include <hostkit/letter/Answer.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/StoredMail.h>

namespace hostkit {

// Sets To and Cc of doc by the rules of PrepareAnswer. own are the user's mail addresses. Addresses that could not be
// sent to are left out, with a warning for each.
void SetRecipients(const StoredMail& mail, const HeaderValues& header, Audience audience,
                   const std::vector<std::string>& own, CMailDoc& doc, std::vector<std::string>& warnings);

// Leaves each mailbox in doc's To and Cc once, where it stands first.
void DropRepeated(CMailDoc& doc);

}  // namespace hostkit
