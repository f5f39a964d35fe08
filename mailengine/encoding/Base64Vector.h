// Base64Vector: the groups of Base64 (RFC 2045 6.8), eight at a time, for processors that have AVX2. Internal to the
// codec, which does with plain tables what is left over; stateless.
#pragma once

#include <cstddef>
#include <string_view>

#include <mailengine/encoding/Base64Groups.h>

namespace base64 {

// Whether this processor has it. Where it has not, the operations below must not be called.
bool HasVectorUnit();

// As DecodeGroups, but stops as soon as fewer than 32 characters or 24 bytes of room are left.
Progress DecodeVector(std::string_view text, unsigned char* to, std::size_t room);

// Encodes groups of the size bytes at from while 28 bytes are left, and reads no byte behind them. to has room for 4
// characters for each 3 bytes. The result is the bytes taken, a multiple of 24.
std::size_t EncodeVector(const unsigned char* from, std::size_t size, char* to);

}  // namespace base64
