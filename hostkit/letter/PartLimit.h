// PartLimit: how much one message may be taken apart into. Stateless; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

inline constexpr int kMaxParts = 10'000;  // and so as many files; real mail stays below a hundred

// Whether the message, with all that is nested in it, has more parts than kMaxParts: each costs time and may become a
// file. It does not parse: a line counts that a multipart of the message could take for its delimiter (RFC 2046 5.1.1).
HOSTKIT_API bool HasTooManyParts(const CString& mail);
// What a message of too many parts is told, as a fault of it.
HOSTKIT_API std::string TooManyPartsText();

}  // namespace hostkit
