// MessageFile: a stored message on its way to the parser. Stateless; any thread.
#pragma once

#include <climits>
#include <cstddef>
#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

inline constexpr std::size_t kMaxMessageBytes = INT_MAX;  // offsets in a message are int

// The message at path, or behind an open descriptor that has a name for people, byte for byte. Throws Failure, for a
// message of 2 GiB or more too.
HOSTKIT_API std::string ReadMessage(const std::filesystem::path& path);
HOSTKIT_API std::string ReadMessage(int descriptor, const std::string& name);

// A message as CEMailPerser takes it, with CRLF line ends: one whose first line ends in a bare LF, as mail stores on
// this system keep it, gets CRLF at every line end; any other stays byte for byte. Throws Failure, for 2 GiB too.
HOSTKIT_API CString MessageOf(std::string bytes, const std::string& name = {});

}  // namespace hostkit
