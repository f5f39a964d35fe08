// Addresses: cuts the value of an address field into one text for each address. Stateless; any thread.
#pragma once

#include <string_view>

#include <mailengine/support/platform/text/StringArray.h>

namespace parser {

// CEMailPerser::PerseAddressField.
bool ParseAddressField(std::string_view text, int top, std::string_view name, CStringArray& list);

}  // namespace parser
