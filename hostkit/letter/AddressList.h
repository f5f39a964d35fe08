// AddressList: the addresses of a field that people type into. Stateless; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit {

// The addresses of a line, each as AddressOf wants it, unchecked: what commas, semicolons and line ends part, also the
// full-width ones that a Japanese keyboard gives (，；、), outside double quotes and angle brackets. Blanks at their
// ends are left out, and so is what is empty.
HOSTKIT_API std::vector<std::string> AddressesIn(std::string_view line);

// The same as a line.
HOSTKIT_API std::string LineOf(const std::vector<std::string>& addresses);

}  // namespace hostkit
