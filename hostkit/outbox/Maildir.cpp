#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/outbox/Maildir.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr const char* kFolders[] = {"tmp", "new", "cur"};

[[noreturn]] void Refuse(const std::filesystem::path& folder, const std::string& fact) {
    throw Failure(FailureKind::Target, {Field::None, folder.native()}, fact);
}

// Two characters would end a name's part or the name itself.
std::string HostName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return "localhost";
    std::string text;
    for (const char* c = name.data(); *c != '\0'; ++c)
        text += *c == '/' ? "\\057" : *c == ':' ? "\\072" : std::string(1, *c);
    return text;
}

// Moment, process and a count make it one of its kind on this machine, which the name tells too.
std::string UniqueName() {
    static unsigned int count = 0;
    const auto now =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch())
            .count();
    return std::to_string(now / 1'000'000) + ".M" + std::to_string(now % 1'000'000) + "P" + std::to_string(getpid()) +
           "Q" + std::to_string(++count) + "." + HostName();
}

bool IsFolder(const std::filesystem::path& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Maildir::Maildir(const std::filesystem::path& folder) {
    std::error_code none;
    m_folder = std::filesystem::absolute(folder, none);
    if (mkdir(m_folder.c_str(), S_IRWXU) == 0) {
        for (const char* name : kFolders)
            if (mkdir((m_folder / name).c_str(), S_IRWXU) != 0) Refuse(folder, SystemWords(errno));
    } else if (errno != EEXIST) {
        Refuse(folder, SystemWords(errno));
    }
    for (const char* name : kFolders) {
        if (!IsFolder(m_folder / name)) Refuse(folder, Words("is no Maildir: it has no folder {1}", name));
        if (faccessat(AT_FDCWD, (m_folder / name).c_str(), W_OK | X_OK, AT_EACCESS) != 0)
            Refuse(folder / name, SystemWords(errno));
    }
}

Maildir::Message::Message(const std::filesystem::path& folder) : m_folder(folder) {
    do {
        m_strName = UniqueName();
        if (m_pPending) m_pPending->Release();
        m_pPending = std::make_unique<PendingFile>(PendingFile::Kind::File, (folder / "tmp" / m_strName).native());
        m_file = hostkit::Descriptor(
            open(m_pPending->Path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    } while (!m_file && errno == EEXIST);
    if (m_file) return;
    const int error = errno;
    m_pPending->Release();
    Fail(error);
}

void Maildir::Message::Deliver(const std::string& flags) {
    const std::string target = (m_folder / "cur" / (m_strName + ":2," + flags)).native();
    if (fsync(m_file.Number()) != 0) Fail(errno);
    if (MoveWithoutReplacing(m_pPending->Path(), target) != 0) Fail(errno);
    m_pPending->Release();
    const hostkit::Descriptor folder(open((m_folder / "cur").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    (void)fsync(folder.Number());  // it has its name; whether that outlives a power cut nobody can mend here
}

void Maildir::Message::Fail(int error) const {
    throw Failure(FailureKind::Output, {Field::None, m_folder.native()},
                  Words("the copy could not be kept: {1}", SystemWords(error)));
}

}  // namespace hostkit
