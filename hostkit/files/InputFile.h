// InputFile: a whole file in memory. Stateless; any thread.
#pragma once

#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>

namespace hostkit {

// All bytes of the file at path, or of an open descriptor, which stays open and has a name for people. Throws Failure,
// which names it, if it cannot be read or holds more than maxBytes: an endless input ends there.
HOSTKIT_API std::string ReadWhole(const std::filesystem::path& path, std::size_t maxBytes);
HOSTKIT_API std::string ReadWhole(int descriptor, const std::string& name, std::size_t maxBytes);

}  // namespace hostkit
