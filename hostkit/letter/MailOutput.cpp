#include <climits>
#include <filesystem>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/letter/MailOutput.h>

#include <mailengine/mailengine.h>

namespace hostkit {

namespace {

// The writer sends a file of this extension as it is, as an attached mail; the reader then asks whether it is one.
bool IsUnreadableMail(const CString& path, const std::string& native) {
    if (CFileUtility::GetFileExt(path) != "eml") return false;
    try {
        CString subject;
        return CEMailPerser().GetSubject(CString(ReadWhole(native, INT_MAX)), subject) == 0;
    } catch (const Failure&) {
        return true;  // too large, or gone meanwhile
    }
}

// What keeps the reader from the written mail, empty if nothing does.
std::string ReasonNotReadable(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    for (const CMailDoc::FileInfo& file : files) {
        const std::string native = platform::ToNativePath(file.Path);
        if (IsUnreadableMail(file.Path, native)) {
            return native + " cannot be read as a mail itself (MIME-Version 1.0 and CRLF line ends are needed)";
        }
    }
    std::error_code error;
    if (files.empty()) return "";
    const std::string last = platform::ToNativePath(files.back().Path);
    return std::filesystem::file_size(last, error) == 0 && !error ? last + " is empty and the last attachment" : "";
}

}  // namespace

std::string WriteMail(CMailDoc& doc, OutputTarget& target) {
    COutputStream& stream = target.Open();
    CProgressCallback progress("", 0, nullptr);
    CString error;
    const int written = CEMailWriter(&stream, doc, progress).Write(error);
    target.CheckWritten();
    if (!written) throw Failure(FailureKind::Input, {}, OneLine(error));
    target.Commit();
    const std::string reason = ReasonNotReadable(doc);
    return reason.empty() ? "" : "mailengine cannot read this mail again: " + reason;
}

}  // namespace hostkit
