// FileName: the one rule by which a name that came from elsewhere becomes a name of a file in a folder. Pure functions
// on UTF-8; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace hostkit {

inline constexpr std::size_t kMaxFileNameBytes = 255;  // what the file systems of Linux take

// The name, made fit: valid UTF-8 without separators, control characters and characters that hide or reorder others,
// each of which becomes an underscore; no dot, hyphen or blank in front, no blank behind; at most maxBytes, shortened
// before its extension and never inside a character. Empty if nothing is left.
HOSTKIT_API std::string CleanFileName(std::string_view name, std::size_t maxBytes = kMaxFileNameBytes);

// Splits before the last dot; the extension has its dot, and is empty where there is none, or none that could be one.
HOSTKIT_API std::string_view ExtensionOf(std::string_view name);

// Names of one folder that are told apart on every file system: also by the case of their letters, and however a
// letter and its accent are put together.
class HOSTKIT_API UniqueFileNames {
public:
    // The name, which must be clean, or "name (1).txt" and so on: the first that is still free. It is taken then.
    std::string Take(const std::string& name);

private:
    std::set<std::string> m_taken;
    std::map<std::string, int> m_next;
};

}  // namespace hostkit
