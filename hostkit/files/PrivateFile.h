// PrivateFile: what a user wrote or got, kept in a file that nobody else may read. One thread.
#pragma once

#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string_view>

namespace hostkit {

// Puts the bytes into the file at path, which is for this user alone afterwards (mode 0600), whatever it was before. A
// file that stands there is replaced in one step, by one that is whole and on the disk (NewFile); links are followed.
// Throws Failure, for what is no regular file too; what stood there is then as it was.
HOSTKIT_API void WritePrivateFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace hostkit
