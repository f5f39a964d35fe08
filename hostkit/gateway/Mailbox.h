// Mailbox: a name and an address of a mail that came from elsewhere (RFC 5322 3.4).
#pragma once

#include <string>

namespace hostkit {

// UTF-8; name is empty where the address has none.
struct Mailbox {
    std::string name;
    std::string address;
};

}  // namespace hostkit
