#include <cstring>
#include <filesystem>
#include <hostkit/characters/Words.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/letter/LetterWarning.h>

#include <mailengine/mailengine.h>

namespace hostkit {

namespace {

// An attached mail stands as it is, any other file as Base64, in lines of 72 characters.
bool IsTooLargeToRead(const CMailDoc& doc) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    std::uintmax_t bytes = 0;
    for (const CMailDoc::FileInfo& file : files) {
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(platform::ToNativePath(file.Path), gone);
        const bool isMail = CFileUtility::GetFileExt(file.Path) == "eml";
        if (!gone) bytes += isMail ? size : size / 54 * 74;
    }
    return bytes > kMaxMessageBytes;
}

// What others may refuse in the written mail, empty if nothing.
std::string WarningFor(const CMailDoc& doc) {
    constexpr int kMaxLineBytes = 998;  // RFC 5322 2.1.1
    if (IsTooLargeToRead(doc))
        return Words("the mail has 2 GiB or more; mailengine, as many others, cannot read it again");
    CString subject;
    doc.GetSubject(subject);
    const int line = subject.GetLength() + static_cast<int>(std::strlen("Subject: "));
    if (CLanguage::IsJapanese(subject) || line <= kMaxLineBytes) return "";
    return Words("the subject is one line of {1} bytes; servers may refuse more than 998", line);
}

}  // namespace

std::string LetterWarning(const CMailDoc& doc, const CarriedFiles& carried) {
    const std::string& one = carried.Warning();
    const std::string other = WarningFor(doc);
    return one.empty() || other.empty() ? one + other : one + "; " + other;
}

}  // namespace hostkit
