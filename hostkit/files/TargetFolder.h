// TargetFolder: a folder of the user's that takes new files, each whole or not at all. They are made in a work folder
// inside it, or inside the nearest folder around it while it is not there, so that on one file system they only have to
// be moved. One thread.
#pragma once

#include <filesystem>
#include <hostkit/files/FileName.h>
#include <hostkit/files/WorkFolder.h>
#include <string>
#include <vector>

namespace hostkit {

class TargetFolder {
public:
    // Makes the work folder, and nothing else. Throws Failure where folder is no folder, or none can be made.
    explicit TargetFolder(const std::filesystem::path& folder);
    TargetFolder(const TargetFolder&) = delete;
    TargetFolder& operator=(const TargetFolder&) = delete;
    // What was taken goes again, unless it was kept.
    ~TargetFolder();

    // Where the files are to be made.
    const WorkFolder& Work() const { return m_work; }
    // Moves a file out of the work folder, under a name that is clean (FileName) and that nothing in the folder has,
    // nor differs from by case alone. Gives its path, in the folder as the user named it. Makes the folder if it is
    // missing. Throws Failure.
    std::filesystem::path Take(const std::filesystem::path& made, const std::string& name);
    // All that was taken stays. Nothing can fail.
    void Keep() { m_taken.clear(); }

private:
    void Open();

    std::filesystem::path m_named;
    std::filesystem::path m_folder;  // absolute
    WorkFolder m_work;
    bool m_bOpen = false;
    bool m_bMade = false;
    UniqueFileNames m_names;
    std::vector<std::filesystem::path> m_taken;
};

}  // namespace hostkit
