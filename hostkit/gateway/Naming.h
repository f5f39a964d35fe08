// Naming: names for attachments that came without one.
#pragma once

#include <hostkit/gateway/Reading.h>
#include <vector>

namespace hostkit::gateway {

// Gives each file a name: an attached mail that of its subject, all else a number and the end that goes with its type.
void NameFiles(std::vector<Attached>& files);

}  // namespace hostkit::gateway
