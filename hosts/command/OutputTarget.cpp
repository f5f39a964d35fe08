#include "OutputTarget.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "Failure.h"

namespace {

std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : path;
}

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
    throw CFailure(path + ": " + reason);
}

}  // namespace

COutputTarget::COutputTarget(const std::string& path) : m_strShown(path) {
    struct stat status;
    if (path == "-") {
        m_strShown = "standard output";
        m_nDescriptor = STDOUT_FILENO;
        if (fstat(STDOUT_FILENO, &status) != 0) Refuse(m_strShown, "is closed; open it, or name a file with -o");
        m_status = status;
        return;
    }
    m_strPath = path;
    LookAtFile();
}

COutputTarget::~COutputTarget() {
    if (m_nDescriptor > STDERR_FILENO) close(m_nDescriptor);
}

void COutputTarget::LookAtFile() {
    struct stat status;
    if (m_strPath.empty() || m_strPath.back() == '/') Refuse("-o '" + m_strShown + "'", "names no file; give a file");
    if (stat(m_strPath.c_str(), &status) != 0) {
        const int error = errno;
        if (error != ENOENT) Refuse(m_strShown, std::strerror(error));
        if (lstat(m_strPath.c_str(), &status) == 0) Refuse(m_strShown, "is a link to nothing; name another file");
        return;
    }
    m_status = status;
    if (S_ISDIR(status.st_mode)) Refuse(m_strShown, "is a folder; give a file in it");
    if (faccessat(AT_FDCWD, m_strPath.c_str(), W_OK, AT_EACCESS) != 0) {
        Refuse(m_strShown, std::string("may not be written: ") + std::strerror(errno) + "; name another file");
    }
    if (S_ISREG(status.st_mode)) m_strPath = RealPath(m_strPath);
}

void COutputTarget::CheckIsNot(const struct stat& status, const std::string& what) const {
    if (!m_status || m_status->st_dev != status.st_dev || m_status->st_ino != status.st_ino) return;
    Refuse(what, "is also the file to write; name another with -o");
}

COutputStream& COutputTarget::Open() {
    const bool direct = m_status && !S_ISREG(m_status->st_mode);
    if (m_strPath.empty()) {
        m_pStream = std::make_unique<CDescriptorStream>(STDOUT_FILENO);
    } else if (direct) {
        m_nDescriptor = open(m_strPath.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (m_nDescriptor < 0) Refuse(m_strShown, std::string("cannot be opened: ") + std::strerror(errno));
        m_pStream = std::make_unique<CDescriptorStream>(m_nDescriptor);
    } else {
        m_pFile = std::make_unique<CTemporaryFile>(m_strPath, m_status ? &*m_status : nullptr);
        m_pStream = std::make_unique<CDescriptorStream>(m_pFile->Descriptor());
    }
    return *m_pStream;
}

void COutputTarget::CheckWritten() const {
    if (m_pStream->Failed() == 0) return;
    Refuse(m_strShown, std::string("cannot be written: ") + std::strerror(m_pStream->Failed()) +
                           (m_pFile ? "; nothing was changed" : "; the message there is not whole"));
}

void COutputTarget::Commit() {
    m_pStream->Close();
    CheckWritten();
    if (m_pFile) m_pFile->Replace();
}
