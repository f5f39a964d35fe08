// Dialect: whether the engine by itself reads a message rightly. docs/gateway.md says what that asks for. The test
// walks header blocks and delimiters and decodes the text alone, so it costs little beside a reading. Stateless; any
// thread.
#pragma once

#include <string_view>

namespace hostkit::gateway {

// message ends its lines by CRLF. false is always safe: such a message is rewritten. One of more than so many parts,
// with those of the mails attached to it, is outside.
bool IsInDialect(std::string_view message, std::size_t maxParts);

// Whether each line end of text is a CRLF; a bare CR counts as text.
bool HasCrlfLines(std::string_view text);

}  // namespace hostkit::gateway
