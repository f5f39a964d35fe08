// CTempFolder: a new folder that lives as long as the object, under its native and its library path. Tests, fuzzers and
// benchmarks use it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <mailengine/support/platform/text/String.h>

class CTempFolder {
public:
    explicit CTempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string name = parent / "mailengine-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder " + name);
        m_path = name;
    }
    ~CTempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    const std::filesystem::path& Native() const { return m_path; }
    // The native path of a file in the folder.
    std::string operator/(const std::string& name) const { return m_path.string() + "/" + name; }
    // The library's path of a file in the folder; name is code page 932.
    CString Path(const char* name = "") const {
        std::string path = m_path.string();
        std::replace(path.begin(), path.end(), '/', '\\');
        return CString(path.c_str()) + (*name == 0 ? "" : "\\") + name;
    }

private:
    std::filesystem::path m_path;
};
