// CScratchFolder: a folder among the temporary files that a fuzzer fills and empties with each run. It stands alone in
// an outer one, so a file that escaped shows.
#pragma once

#include <filesystem>
#include <iterator>
#include <tests/TempFolder.h>
#include <tests/models/Require.h>

class CScratchFolder {
public:
    CScratchFolder() { std::filesystem::create_directory(m_inner); }

    CString Path() const { return m_outer.Path("inner"); }

    std::size_t Entries() const { return Count(m_inner); }

    // Ends a run: all that was made lies directly in the folder and is a plain file. Empties it.
    void CheckAndEmpty() {
        Require(Count(m_outer.Native()) == 1, "nothing is made beside the folder");
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

    const CTempFolder m_outer;
    const std::filesystem::path m_inner = m_outer.Native() / "inner";
};
