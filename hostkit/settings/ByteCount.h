// ByteCount: a size as people write it. Stateless; any thread.
#pragma once

#include <cstdint>
#include <hostkit/characters/Failure.h>
#include <string_view>

namespace hostkit {

// The bytes of "1500", "500K", "25M" or "2G" (steps of 1,024; small letters too). Throws Failure of the kind Value,
// about the field, for anything else, for 0 and for what no file could have.
HOSTKIT_API std::uint64_t BytesIn(std::string_view text, Field field = Field::None);

}  // namespace hostkit
