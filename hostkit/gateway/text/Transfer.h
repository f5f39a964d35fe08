// Transfer: undoes the transfer encodings (RFC 2045 6, and uuencode), by GMime's decoders. Stateless; any thread.
#pragma once

#include <gmime/gmime.h>
#include <string>
#include <string_view>

namespace hostkit::gateway {

// Whether it changes bytes: Base64, quoted-printable and uuencode do.
bool IsEncoding(GMimeContentEncoding encoding);

// The bytes that were encoded; what is no part of the encoding is passed over. Any that is no encoding leaves
// the bytes as they are.
std::string DecodeTransfer(std::string_view text, GMimeContentEncoding encoding);

enum class LineEnds { Crlf, Any };

// Whether text is Base64 as the engine decodes it: whole groups on each line, padding at the end alone.
bool IsCleanBase64(std::string_view text, LineEnds ends);

}  // namespace hostkit::gateway
