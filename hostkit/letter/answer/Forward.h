// Forward: a letter that hands a mail on, attached as it came. One thread.
#pragma once

#include <filesystem>
#include <hostkit/letter/Letter.h>
#include <string>

namespace hostkit {

// A letter with the message attached, which comes byte for byte as its store has it, and its subject behind "Fwd: ".
// The attached file is a new one in folder, which is made if it is missing; it is called by the subject, and must stay
// until the letter was saved or sent. What a Japanese mail cannot carry of the subject becomes 〓. Throws Failure, for
// what is no message too; name is that of the message for it.
HOSTKIT_API Letter ForwardOf(const std::string& message, const std::filesystem::path& folder,
                             const std::string& name = {});

}  // namespace hostkit
