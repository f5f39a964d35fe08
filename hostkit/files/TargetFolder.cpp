#include <cerrno>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/TargetFolder.h>

namespace hostkit {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& folder, const std::string& fact) {
    throw Failure(FailureKind::Target, {Field::Folder, folder.native()}, fact);
}

std::filesystem::path Absolute(const std::filesystem::path& folder) {
    std::error_code none;
    const std::filesystem::path absolute = std::filesystem::absolute(folder, none);
    return none ? folder : absolute;
}

// The folder, or the nearest one around it that is there.
std::filesystem::path NearestTo(const std::filesystem::path& folder, const std::filesystem::path& named) {
    std::filesystem::path nearest = folder;
    std::error_code error;
    std::filesystem::file_status status = std::filesystem::status(nearest, error);
    while (status.type() == std::filesystem::file_type::not_found && nearest.has_relative_path()) {
        nearest = nearest.parent_path();
        status = std::filesystem::status(nearest, error);
    }
    if (status.type() == std::filesystem::file_type::directory) return nearest;
    const int fault = status.type() == std::filesystem::file_type::none ? error.value() : ENOTDIR;
    Fail(named, Words("cannot take files: {1}", SystemWords(fault)));
}

}  // namespace

TargetFolder::TargetFolder(const std::filesystem::path& folder)
    : m_named(folder), m_folder(Absolute(folder)), m_work(NearestTo(m_folder, folder), {Field::Folder, folder}) {}

TargetFolder::~TargetFolder() {
    std::error_code none;
    for (const std::filesystem::path& path : m_taken)
        std::filesystem::remove(path, none);
    if (m_bMade && !m_taken.empty()) std::filesystem::remove(m_folder, none);
}

// The names that the folder holds are not free.
void TargetFolder::Open() {
    std::error_code error;
    m_bMade = std::filesystem::create_directories(m_folder, error);
    if (error) Fail(m_named, Words("cannot be made: {1}", SystemWords(error.value())));
    for (std::filesystem::directory_iterator at(m_folder, error), end; !error && at != end; at.increment(error))
        (void)m_names.Take(at->path().filename());
    if (error) Fail(m_named, Words("cannot be read: {1}", SystemWords(error.value())));
    m_bOpen = true;
}

std::filesystem::path TargetFolder::Take(const std::filesystem::path& made, const std::string& name) {
    if (!m_bOpen) Open();
    const std::string clean = CleanFileName(name);
    for (;;) {
        const std::string unique = m_names.Take(clean.empty() ? "_" : clean);
        if (MoveWithoutReplacing(m_work.Path() / made, m_folder / unique) == 0) {
            m_taken.push_back(m_folder / unique);
            return m_named / unique;
        }
        if (errno != EEXIST) Fail(m_named, Words("cannot take the file '{1}': {2}", unique, SystemWords(errno)));
    }
}

}  // namespace hostkit
