#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <hostkit/attachments/AttachedMail.h>
#include <hostkit/attachments/Attachment.h>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mailengine/support/FileUtility.h>
#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

namespace {

constexpr std::string_view kMailExtension = "eml";
constexpr std::string_view kFileExtension = "EML";

[[noreturn]] void Refuse(const std::string& path, int error) {
    throw Failure(FailureKind::Input, {Field::Attachment, path}, Words("cannot be copied: {1}", SystemWords(error)));
}

bool IsUnsized(const std::string& path) {
    struct stat status;
    char byte = 0;
    if (stat(path.c_str(), &status) != 0 || status.st_size != 0) return false;
    const Descriptor file = OpenToRead(path);
    return file && ReadSome(file.Number(), &byte, 1) > 0;
}

// Not more than the file had when it was opened, where it told: one that grows as fast as it is read has no end.
void Copy(const std::string& from, const std::string& to, LineEnds* ends, const CarriedFiles::Copying& copying) {
    const Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    const Descriptor target(open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    struct stat status;
    if (!source || !target || fstat(source.Number(), &status) != 0) Refuse(from, errno);
    std::array<char, 64 * 1024> buffer;
    off_t copied = 0;
    for (ssize_t count = 1; count > 0 && (status.st_size == 0 || copied <= status.st_size); copied += count) {
        count = ReadSome(source.Number(), buffer.data(), buffer.size());
        if (count < 0) Refuse(from, errno);
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(count));
        const int error =
            ends == nullptr ? WriteAll(target.Number(), piece) : WriteAll(target.Number(), ends->Next(piece));
        if (error != 0) Refuse(from, error);
        if (copying && count > 0 && !copying(piece.size())) throw CarriedFiles::Cancelled();
    }
    if (status.st_size != 0 && copied != status.st_size) RefuseChanged(from);
}

void Link(const std::string& from, const std::string& to) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::absolute(from, error);
    if (error || symlink(target.c_str(), to.c_str()) != 0) Refuse(from, error ? error.value() : errno);
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
}

}  // namespace

CarriedFiles::CarriedFiles(CMailDoc& doc, Copied copied, const Copying& copying)
    : m_doc(doc), m_nModified(doc.IsModified()) {
    m_doc.GetFiles(m_given);
    std::vector<CMailDoc::FileInfo> files = m_given;
    for (const CMailDoc::FileInfo& file : files)
        m_files.push_back({platform::ToNativePath(file.Path), platform::ToNativePath(file.Path)});
    const AttachmentWatch given = Watch();
    for (std::size_t i = 0; i < files.size(); ++i) {
        files[i].Path = Carry(files[i].Path, copied, copying);
        m_files[i].path = platform::ToNativePath(files[i].Path);
    }
    given.Check();
    m_doc.SetFiles(files);
}

CarriedFiles::~CarriedFiles() {
    m_doc.SetFiles(m_given);
    m_doc.SetModifiedFlag(m_nModified);
}

// The library path of what stands for the file at path, itself where it can.
CString CarriedFiles::Carry(const CString& path, Copied copied, const Copying& copying) {
    const std::string native = platform::ToNativePath(path);
    CString name = CarriedName(native);
    LineEnds ends;
    bool hasOtherEnds = false;
    if (CFileUtility::GetFileExt(name).View() == kMailExtension) {
        const MessageForm form = FormOf(native);
        hasOtherEnds = form.HasBareEnds();
        if (form.Fault().what != Uncarriable::What::Nothing) {
            hasOtherEnds = false;
            name = CString(name.View().substr(0, name.View().size() - kMailExtension.size())) + CString(kFileExtension);
            if (!m_strWarning.empty()) m_strWarning += "; ";
            m_strWarning += Words("{1} is attached as the file {2}: an attached mail cannot carry {3}", native,
                                  FromCodePage(name.View()), WordsFor(form.Fault()));
        }
    }
    const bool isCopied = copied == Copied::All || hasOtherEnds || IsUnsized(native);
    if (!isCopied && name.View() == CFileUtility::GetFileNameFromPath(path).View()) return path;
    CString place = PlaceFor(name);
    if (isCopied)
        Copy(native, platform::ToNativePath(place), hasOtherEnds ? &ends : nullptr, copying);
    else
        Link(native, platform::ToNativePath(place));
    return place;
}

CString CarriedFiles::PlaceFor(const CString& name) {
    const std::size_t folder = m_taken[std::string(name.View())]++;
    while (m_folders.size() <= folder)
        m_folders.emplace_back();
    return m_folders[folder].LibraryPath() + "\\" + name;
}

void CarriedFiles::CheckReadable() const {
    for (const AttachmentWatch::File& file : m_files)
        CheckAttachable(file.shown);
}

std::string CarriedFiles::InUsersNames(std::string text) const {
    std::vector<CMailDoc::FileInfo> files;
    m_doc.GetFiles(files);
    for (std::size_t i = 0; i < files.size() && i < m_files.size(); ++i)
        ReplaceAll(text, FromCodePage(files[i].Path.View()), m_files[i].shown);
    return text;
}

}  // namespace hostkit
