// Addresses: the mailboxes of address fields (RFC 5322 3.4), by GMime's parser. Any thread.
#pragma once

#include <hostkit/gateway/Mailbox.h>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

// Appends the mailboxes of a field body as it came. Groups give their members; comments give a name where there is no
// other. A semicolon outside a group counts as a comma, as some programs write it. letter is the charset of the text
// below.
void ReadAddresses(std::string_view raw, std::string_view letter, std::vector<Mailbox>& mailboxes);

}  // namespace hostkit::gateway
