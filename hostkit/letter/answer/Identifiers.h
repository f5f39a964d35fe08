// Identifiers: the message identifiers by which an answer belongs to its thread (RFC 5322 3.6.4). The engine writes
// them as they are, without an encoded word and without a fold. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit {

// What of text is printable ASCII, without blanks at its ends.
std::string PlainBytes(std::string_view text);

// A list of identifiers in a row, or on lines of their own, as the engine's References want them: printable ASCII, each
// on its line (RFC 5322 2.1.1).
std::string FoldedIdentifiers(std::string_view identifiers);

}  // namespace hostkit
