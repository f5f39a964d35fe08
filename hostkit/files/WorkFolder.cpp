#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/WorkFolder.h>
#include <sys/stat.h>

#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

std::filesystem::path TemporaryFolder() {
    const char* const named = std::getenv("TMPDIR");
    std::error_code none;
    const std::filesystem::path folder(named != nullptr && *named != '\0' ? named : "/tmp");
    const std::filesystem::path absolute = std::filesystem::absolute(folder, none);
    return none ? folder : absolute;
}

// Every folder has a library path: what code page 932 lacks is spelled.
WorkFolder::WorkFolder(const std::filesystem::path& parent, const Place& where)
    : m_folder(PendingFile::Kind::Folder, parent / NewFileName()),
      m_strLibraryPath(platform::ToLibraryName(m_folder.Path())) {
    if (mkdir(m_folder.Path().c_str(), S_IRWXU) == 0) return;
    const int error = errno;
    m_folder.Release();
    throw Failure(FailureKind::System, where.name.empty() ? Place{Field::None, parent.native()} : where,
                  Words("a temporary folder cannot be made in it: {1}", SystemWords(error)));
}

WorkFolder::~WorkFolder() = default;

}  // namespace hostkit
