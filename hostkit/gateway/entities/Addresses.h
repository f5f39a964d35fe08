// Addresses: the mailboxes of address fields (RFC 5322 3.4), by GMime's parser. Any thread.
#pragma once

#include <cstddef>
#include <hostkit/gateway/Mailbox.h>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

inline constexpr std::size_t kMaxAddresses = 10'000;  // of a kind; no server takes as many recipients

// Appends the mailboxes of a field body as it came, until there are kMaxAddresses; false if there are more. Groups give
// their members; comments give a name where there is no other. A semicolon outside a group counts as a comma, as some
// programs write it. letter is the charset of the text below.
bool ReadAddresses(std::string_view raw, std::string_view letter, std::vector<Mailbox>& mailboxes);

}  // namespace hostkit::gateway
