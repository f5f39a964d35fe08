// CScratchFolder: a folder among the temporary files that a fuzzer fills and empties with each run. It stands alone in
// an outer one, so a file that escaped shows.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fuzz/Require.h>
#include <iterator>
#include <string>

class CScratchFolder {
public:
    CScratchFolder() {
        const char* const temporary = std::getenv("TMPDIR");
        std::string outer = std::string(temporary != nullptr ? temporary : "/tmp") + "/mailengine-fuzz-XXXXXX";
        Require(mkdtemp(outer.data()) != nullptr, "there is a place for scratch files");
        m_outer = outer;
        m_inner = m_outer / "inner";
        std::filesystem::create_directory(m_inner);
    }
    ~CScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_outer, ignored);
    }
    CScratchFolder(const CScratchFolder&) = delete;
    CScratchFolder& operator=(const CScratchFolder&) = delete;

    CString Path() const {
        std::string path = m_inner.string();
        std::replace(path.begin(), path.end(), '/', '\\');
        return CString(path.c_str());
    }

    std::size_t Entries() const { return Count(m_inner); }

    // Ends a run: all that was made lies directly in the folder and is a plain file. Empties it.
    void CheckAndEmpty() {
        Require(Count(m_outer) == 1, "nothing is made beside the folder");
        for (const auto& entry : std::filesystem::directory_iterator(m_inner)) {
            Require(entry.symlink_status().type() == std::filesystem::file_type::regular, "only files are made");
            std::filesystem::remove(entry.path());
        }
    }

private:
    static std::size_t Count(const std::filesystem::path& folder) {
        using Iterator = std::filesystem::directory_iterator;
        return static_cast<std::size_t>(std::distance(Iterator(folder), Iterator()));
    }

    std::filesystem::path m_outer, m_inner;
};
