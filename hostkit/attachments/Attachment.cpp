#include <cerrno>
#include <fcntl.h>
#include <glib.h>
#include <hostkit/attachments/Attachment.h>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>

#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

namespace {

Place Named(const std::filesystem::path& path) {
    return {Field::Attachment, path.native()};
}

// Whether the folder is at fault: its name is the one to look at then.
std::string ReasonOf(const std::filesystem::path& path, int error) {
    const std::filesystem::path folder = path.parent_path();
    struct stat status;
    if (folder.empty() || stat(folder.c_str(), &status) == 0) return SystemWords(error);
    return Words("the folder {1} cannot be reached: {2}", folder.native(), SystemWords(errno));
}

struct stat StatusOf(const std::filesystem::path& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) throw Failure(FailureKind::Input, Named(path), ReasonOf(path, errno));
    return status;
}

[[noreturn]] void RefuseName(const std::filesystem::path& path, const std::string& fact) {
    throw Failure(FailureKind::Value, Named(path), fact);
}

// The library takes a backslash for a separator: what stands in front of one would name a folder.
void CheckBytes(const std::filesystem::path& path) {
    const std::filesystem::path name = path.filename();
    for (const char ch : name.native()) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte == '"')
            RefuseName(path, Words("its name holds a double quote, which a message cannot carry; give the file "
                                   "another name"));
        if (byte == '\\')
            RefuseName(path,
                       Words("its name holds a backslash, which a message cannot carry; give the file another name"));
        if (byte < 0x20 || byte == 0x7F)
            RefuseName(path, Words("its name holds a control character, which a message cannot carry; give the file "
                                   "another name"));
    }
}

// Unicode's form C; empty for what is not UTF-8.
std::string Composed(const std::string& name) {
    const std::unique_ptr<char, decltype(&g_free)> composed(
        g_utf8_normalize(name.data(), static_cast<gssize>(name.size()), G_NORMALIZE_NFC), &g_free);
    return composed ? composed.get() : "";
}

// The path of any file, name by name.
CString LibraryPathOf(const std::filesystem::path& path) {
    CString inside;
    std::string error;
    if (platform::ToLibraryPath(path.native(), inside, error)) return inside;
    for (const std::filesystem::path& part : path) {
        if (!inside.IsEmpty() && inside.View() != "\\") inside += "\\";
        inside += part == part.root_directory() ? CString("\\") : platform::ToLibraryName(part.native());
    }
    return inside;
}

std::vector<CMailDoc::FileInfo> FilesOf(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    return files;
}

}  // namespace

// A pipe is refused too: the writer opens each file twice.
void CheckAttachable(const std::filesystem::path& path) {
    const mode_t mode = StatusOf(path).st_mode;
    if (S_ISDIR(mode)) throw Failure(FailureKind::Input, Named(path), Words("is a folder; attach the files in it"));
    if (!S_ISREG(mode))
        throw Failure(FailureKind::Input, Named(path), Words("is not a regular file; attach a copy of it"));
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) throw Failure(FailureKind::Input, Named(path), Words("cannot be read: {1}", SystemWords(errno)));
    // The library takes the same lock, and would ask whether the file was moved.
    if (flock(file.Number(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw Failure(FailureKind::Input, Named(path),
                      Words("is locked by another program; attach it when that is done, or a copy of it"));
}

CString CarriedName(const std::filesystem::path& path) {
    CheckBytes(path);
    const std::string name = path.filename().native();
    const Place nowhere;
    try {
        return ToCodePage(name, Extent::Line, Missing::Refuse, nowhere);
    } catch (const Failure& failure) {
        // Only where it must be: form C takes some characters of code page 932 for their cousins.
        const std::string composed = Composed(name);
        if (composed.empty())
            throw Failure(FailureKind::Value, Named(path), Words("its name is not UTF-8; give the file another name"));
        if (composed != name) {
            try {
                return ToCodePage(composed, Extent::Line, Missing::Refuse, nowhere);
            } catch (const Failure&) {
            }
        }
        throw Failure(failure.Kind(), Named(path), Words("its name: {1}", failure.Fact()));
    }
}

CMailDoc::FileInfo AttachmentOf(const std::filesystem::path& path) {
    CheckAttachable(path);
    (void)CarriedName(path);
    CMailDoc::FileInfo file;
    file.Path = LibraryPathOf(path);
    return file;
}

void CheckAttachments(const CMailDoc& doc) {
    for (const CMailDoc::FileInfo& file : FilesOf(doc))
        CheckAttachable(platform::ToNativePath(file.Path));
}

void CheckAreNotTarget(const CMailDoc& doc, const OutputTarget& target) {
    for (const CMailDoc::FileInfo& file : FilesOf(doc)) {
        const std::string path = platform::ToNativePath(file.Path);
        struct stat status;
        if (stat(path.c_str(), &status) == 0) target.CheckIsNot(status, Named(path));
    }
}

}  // namespace hostkit
