#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/OutputTarget.h>
#include <unistd.h>

namespace hostkit {

namespace {

std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : path;
}

[[noreturn]] void Refuse(FailureKind kind, const std::string& name, const std::string& fact) {
    throw Failure(kind, {Field::None, name}, fact);
}

}  // namespace

OutputTarget::OutputTarget(const std::filesystem::path& path, Unkept unkept) : m_strShown(path), m_unkept(unkept) {
    if (const std::optional<int> number = DescriptorNamedBy(path); number)
        LookAtDescriptor(*number);
    else
        LookAtFile(path);
}

OutputTarget::OutputTarget(int descriptor, const std::string& name) : m_strShown(name) {
    LookAtDescriptor(descriptor);
}

OutputTarget::~OutputTarget() = default;

void OutputTarget::LookAtDescriptor(int number) {
    if (number < 0) Refuse(FailureKind::Target, m_strShown, Words("is open in another program; name its file"));
    m_straight = SecondFor(number);
    struct stat status;
    if (!m_straight || fstat(number, &status) != 0)
        Refuse(FailureKind::Target, m_strShown, Words("is closed; open it, or name a file"));
    if ((fcntl(number, F_GETFL) & O_ACCMODE) == O_RDONLY)
        Refuse(FailureKind::Target, m_strShown,
               Words("is open for reading alone; open it for writing, or name a file"));
    m_status = status;
}

void OutputTarget::LookAtFile(const std::filesystem::path& path) {
    struct stat status;
    std::error_code none;
    const std::filesystem::path absolute = std::filesystem::absolute(path, none);
    m_strPath = none || path.empty() ? path : absolute;
    if (m_strPath.empty() || m_strPath.back() == '/')
        Refuse(FailureKind::Target, "'" + m_strShown + "'", Words("names no file; give a file"));
    if (stat(m_strPath.c_str(), &status) != 0) {
        const int error = errno;
        if (error != ENOENT) Refuse(FailureKind::Target, m_strShown, SystemWords(error));
        if (lstat(m_strPath.c_str(), &status) == 0)
            Refuse(FailureKind::Target, m_strShown, Words("is a link to nothing; name another file"));
        return;
    }
    m_status = status;
    if (S_ISDIR(status.st_mode)) Refuse(FailureKind::Target, m_strShown, Words("is a folder; give a file in it"));
    if (faccessat(AT_FDCWD, m_strPath.c_str(), W_OK, AT_EACCESS) != 0) {
        Refuse(FailureKind::Target, m_strShown,
               Words("may not be written: {1}; name another file", SystemWords(errno)));
    }
    if (!S_ISREG(status.st_mode)) return;
    CheckIsNotStandard();
    m_strPath = RealPath(m_strPath);
}

void OutputTarget::CheckIsNotStandard() const {
    for (const int number : {STDOUT_FILENO, STDERR_FILENO}) {
        struct stat status;
        if (fstat(number, &status) != 0 || !IsTarget(status)) continue;
        Refuse(FailureKind::Target, m_strShown,
               number == STDOUT_FILENO
                   ? Words("is the file that standard output goes to; name another file, or the output itself")
                   : Words("is the file that standard error goes to; name another file, or the output itself"));
    }
}

bool OutputTarget::IsTarget(const struct stat& status) const {
    return m_status && m_status->st_dev == status.st_dev && m_status->st_ino == status.st_ino;
}

void OutputTarget::CheckIsNot(const struct stat& status, const Place& where) const {
    if (IsTarget(status)) throw Failure(FailureKind::SameFile, where, Words("is also the file to write"));
}

COutputStream& OutputTarget::Open() {
    if (!m_straight && m_status && !S_ISREG(m_status->st_mode)) {
        m_straight = Descriptor(open(m_strPath.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (!m_straight) Refuse(FailureKind::Target, m_strShown, Words("cannot be opened: {1}", SystemWords(errno)));
    }
    if (!m_straight)
        m_pFile = std::make_unique<NewFile>(m_strPath, m_strShown, m_status ? &*m_status : nullptr, m_unkept);
    m_pStream = std::make_unique<DescriptorStream>(m_straight ? m_straight.Number() : m_pFile->Descriptor());
    return *m_pStream;
}

void OutputTarget::CheckWritten() const {
    if (m_pStream->Failed() == 0) return;
    Refuse(FailureKind::Output, m_strShown,
           m_pFile ? Words("cannot be written: {1}; nothing was changed", SystemWords(m_pStream->Failed()))
                   : Words("cannot be written: {1}; the message there is not whole", SystemWords(m_pStream->Failed())));
}

void OutputTarget::Commit() {
    m_pStream->Close();
    CheckWritten();
    if (const int error = m_straight.Close(); error != 0)  // where a file system finds its disk full at the end alone
        Refuse(FailureKind::Output, m_strShown,
               Words("cannot be written: {1}; the message there is not whole", SystemWords(error)));
    if (m_pFile) m_pFile->TakePlace();
}

}  // namespace hostkit
