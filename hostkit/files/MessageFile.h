// MessageFile: a stored message on its way to the parser. Stateless; any thread.
#pragma once

#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>

#include <mailengine/support/platform/text/String.h>

namespace hostkit {

// The message at path, or behind an open descriptor that has a name for people, with CRLF line ends. A message whose
// first line ends in a bare LF, as mail stores on this system keep it, gets CRLF at every line end; any other comes
// byte for byte. Throws Failure, for a message of 2 GiB or more too.
HOSTKIT_API CString ReadMessage(const std::filesystem::path& path);
HOSTKIT_API CString ReadMessage(int descriptor, const std::string& name);
// The same for a message in memory.
HOSTKIT_API CString MessageOf(std::string bytes, const std::string& name = {});

}  // namespace hostkit
