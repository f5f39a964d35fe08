// Terminal: the two ways out to the user, standard output for answers and standard error for complaints. One thread.
#pragma once

#include <string>

namespace terminal {

// One line on standard error, "mailengine: text", behind all that was put out before.
void Complain(const std::string& text);
// The same, as a warning.
void Warn(const std::string& text);
// Text of an answer. Its control characters must be harmless already.
void Put(const std::string& text);
// An answer counts only if it got out: throws CFailure if any of it did not.
void Finish();

}  // namespace terminal
