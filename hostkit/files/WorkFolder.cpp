#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <hostkit/characters/Failure.h>
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

WorkFolder::WorkFolder()
    : m_folder(PendingFile::Kind::Folder, TemporaryFolder() / NewFileName()),
      m_strLibraryPath(LibraryPathOf(m_folder.Path())) {
    if (mkdir(m_folder.Path().c_str(), S_IRWXU) != 0) {
        m_folder.Release();
        throw Failure(FailureKind::System, {Field::None, m_folder.Path()},
                      std::string("a temporary folder cannot be made: ") + std::strerror(errno));
    }
}

WorkFolder::~WorkFolder() = default;

CString LibraryPathOf(const std::filesystem::path& folder) {
    CString inside;
    std::string error;
    if (!platform::ToLibraryPath(folder.native(), inside, error))
        throw Failure(FailureKind::Target, {Field::None, folder.native()}, error + "; choose another folder");
    return inside;
}

CString TargetFolder(const std::filesystem::path& folder) {
    const std::string& path = folder.native();
    const std::size_t end = path.find_last_not_of('/');
    const std::string named = end == std::string::npos ? path + "." : path.substr(0, end + 1);
    std::error_code error;
    std::filesystem::create_directories(named, error);
    if (error)
        throw Failure(FailureKind::Target, {Field::Folder, path},
                      std::string("cannot be made: ") + std::strerror(error.value()));
    return LibraryPathOf(named);
}

}  // namespace hostkit
