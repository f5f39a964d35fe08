#include <algorithm>
#include <limits>
#include <string>

#include <mailengine/support/FileUtility.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/files/FileSystem.h>
#include <mailengine/support/platform/text/Characters.h>

namespace {

constexpr std::int32_t kKilobyte = 1024;
constexpr std::int32_t kMegabyte = 1024 * kKilobyte;
constexpr std::int32_t kGigabyte = 1024 * kMegabyte;

// The text with its ASCII letters in capitals; the second byte of a character is no letter.
CString InCapitals(const CString& text) {
    std::string capitals(text.View());
    for (std::size_t at = 0; at < capitals.size(); at += platform::CharacterBytes(capitals, at)) {
        char& ch = capitals[at];
        if (ch >= 'a' && ch <= 'z') ch = static_cast<char>(ch - 'a' + 'A');
    }
    return CString(std::move(capitals));
}

}  // namespace

CString CFileUtility::GetFileNameFromPath(const char* path) {
    const CString text(path);
    return text.Mid(text.ReverseFind('\\') + 1);
}

CString CFileUtility::GetFileExt(const char* path) {
    const CString name = GetFileNameFromPath(path);
    const int dot = name.ReverseFind('.');
    return dot < 0 ? CString() : name.Mid(dot + 1);
}

CString CFileUtility::GetParentPath(const char* path) {
    const CString text(path);
    return text.Left(text.ReverseFind('\\'));
}

int CFileUtility::Exists(const char* path) {
    platform::WIN32_FIND_DATAA data;
    const platform::HANDLE search = platform::FindFirstFileA(path, data);
    if (search == platform::INVALID_HANDLE_VALUE) return 0;
    platform::FindClose(search);
    return 1;
}

int CFileUtility::DeleteFileA(const char* path) {
    return platform::DeleteFileA(path);
}

std::int32_t CFileUtility::GetFileSize(const char* path) {
    CFileStatus status;
    CFile::GetStatus(path, status);  // a path that cannot be examined leaves the size at 0
    return static_cast<std::int32_t>(std::min<std::int64_t>(status.m_size, std::numeric_limits<std::int32_t>::max()));
}

CString CFileUtility::GetFileSizeString(const char* path, int automaticUnit) {
    const std::int32_t size = GetFileSize(path);
    if (automaticUnit) return SizeAutoUnit(size);
    CString text;
    text.Format(texts::kBytes, size);
    return text;
}

CString CFileUtility::SizeAutoUnit(std::int32_t size) {
    CString text;
    if (size < kKilobyte)
        text.Format(texts::kBytes, size);
    else if (size < kMegabyte)
        text.Format("%dKB", size / kKilobyte);
    else if (size < kGigabyte)
        text.Format("%.2fMB", size / 1048576.0);
    else
        text.Format("%.2fGB", size / 1073741824.0);
    return text;
}

int CFileUtility::IsCommentLine(CString& line) {
    return !line.IsEmpty() && line.GetAt(0) == '#';
}

CString CFileUtility::GetMimeType(const char* path) {
    const CString extension = GetFileExt(path);
    return extension.IsEmpty() ? CString() : InCapitals(extension) + texts::kFileType;
}

void CFileUtility::ReplaceProhibitedWords(CString& text) {
    for (const char prohibited : {'\\', '/', ':', ',', ';', '*', '?', '"', '<', '>', '|'})
        text.Replace(prohibited, '_');
}
