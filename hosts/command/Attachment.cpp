#include "Attachment.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mailengine/support/platform/files/Path.h>

#include "Border.h"
#include "Failure.h"

namespace {

std::string Named(const std::string& path) {
    return "--attach " + path;
}

struct stat StatusOf(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) throw CFailure(Named(path) + ": " + std::strerror(errno));
    return status;
}

// A pipe is refused too: the writer opens each file twice.
void CheckReadable(const std::string& path) {
    if (!S_ISREG(StatusOf(path).st_mode)) throw CFailure(Named(path) + ": is not a regular file; attach a copy of it");
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
        throw CFailure(Named(path) + ": cannot be read: " + std::strerror(errno));
    }
}

void CheckName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    for (std::size_t i = slash == std::string::npos ? 0 : slash + 1; i < path.size(); ++i) {
        const auto byte = static_cast<unsigned char>(path[i]);
        if (byte >= 0x20 && byte != 0x7F && byte != '"') continue;
        throw CFailure(Named(path) + ": its name holds a " + (byte == '"' ? "double quote" : "control character") +
                       ", which a message cannot carry; give the file another name");
    }
}

}  // namespace

CMailDoc::FileInfo AttachmentOf(const std::string& path) {
    CheckReadable(path);
    CheckName(path);
    CString inside;
    std::string error;
    if (!platform::ToLibraryPath(path, inside, error)) {
        throw CFailure(Named(path) + ": " + error + "; give the file another name");
    }
    CMailDoc::FileInfo file;
    file.Path = border::ToCarriedCodes(inside.View(), Named(path));
    return file;
}

void CheckIsNotTarget(const std::string& path, const COutputTarget& target) {
    target.CheckIsNot(StatusOf(path), Named(path));
}
