#include "MessageFile.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <mailengine/support/platform/files/Path.h>

#include "Failure.h"
#include "InputFile.h"

namespace {

constexpr std::size_t kMaxMessageBytes = INT_MAX;  // offsets in a message are int

[[noreturn]] void RefuseSize(const std::string& path) {
    throw CFailure(NameOfMessage(path) + ": is 2 GiB or larger, which no message may be; give single messages");
}

bool HasLfLines(const std::string& text) {
    const std::size_t end = text.find('\n');
    return end != std::string::npos && (end == 0 || text[end - 1] != '\r');
}

std::string WithCrlf(const std::string& text) {
    std::string crlf;
    crlf.reserve(text.size() + text.size() / 32);
    char before = '\0';
    for (const char ch : text) {
        if (ch == '\n' && before != '\r') crlf += '\r';
        crlf += ch;
        before = ch;
    }
    return crlf;
}

CString LibraryPathOf(const std::string& path) {
    CString inside;
    std::string error;
    if (!platform::ToLibraryPath(path, inside, error)) throw CFailure(path + ": " + error + "; choose another folder");
    return inside;
}

}  // namespace

std::string NameOfMessage(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

CString ReadMessage(const std::string& path) {
    std::error_code none;
    const std::uintmax_t size = std::filesystem::file_size(path, none);
    if (!none && size > kMaxMessageBytes) RefuseSize(path);
    std::string text = ReadWhole(path, kMaxMessageBytes);
    if (HasLfLines(text)) text = WithCrlf(text);
    if (text.size() > kMaxMessageBytes) RefuseSize(path);
    return CString(std::move(text));
}

CString TargetFolder(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/');
    const std::string folder = end == std::string::npos ? path + "." : path.substr(0, end + 1);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw CFailure("--extract " + path + ": cannot be made: " + std::strerror(error.value()));
    return LibraryPathOf(folder);
}

CWorkFolder::CWorkFolder() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, &m_oldMask);
    try {
        Make();
    } catch (...) {
        sigprocmask(SIG_SETMASK, &m_oldMask, nullptr);
        throw;
    }
}

void CWorkFolder::Make() {
    const char* const parent = std::getenv("TMPDIR");
    std::string path = std::string(parent != nullptr && *parent != '\0' ? parent : "/tmp") + "/mailengine-XXXXXX";
    m_strLibraryPath = LibraryPathOf(path);  // the letters that replace the X are plain
    if (mkdtemp(path.data()) == nullptr) {
        throw CFailure(path + ": a temporary folder cannot be made: " + std::strerror(errno));
    }
    m_strPath = path;
    m_strLibraryPath = LibraryPathOf(path);
}

CWorkFolder::~CWorkFolder() {
    std::error_code ignored;  // what cannot be removed is readable by this user alone
    std::filesystem::remove_all(m_strPath, ignored);
    sigprocmask(SIG_SETMASK, &m_oldMask, nullptr);
}
