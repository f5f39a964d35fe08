// The life of a document: its directory of extracted attachments, emptying it, and the amount that progress counts.
#include <algorithm>
#include <cstdint>
#include <limits>

#include <mailengine/encoding/Base64.h>
#include <mailengine/model/MailDoc.h>
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/platform/files/FileSystem.h>

int CMailDoc::SetTempPath(const char* path) {
    const int made = platform::CreateDirectoryA(path, nullptr);
    if (made != 0) m_tempPath = path;
    return made;
}

void CMailDoc::ClearAll() {
    ClearToAddresses();
    ClearCcAddresses();
    ClearBccAddresses();
    if (!m_tempPath.IsEmpty()) RemoveTempPath();
    m_tempPath.Empty();
    for (CString* part : {&m_subject, &m_dear, &m_greeting, &m_body, &m_closing, &m_signature})
        part->Empty();
    m_files.clear();
    SetModifiedFlag(0);
}

// Files directly in the directory only: what a host put below it is not the document's.
void CMailDoc::RemoveTempPath() {
    platform::WIN32_FIND_DATAA entry;
    const platform::HANDLE search = platform::FindFirstFileA(m_tempPath + "\\*.*", entry);
    if (search != platform::INVALID_HANDLE_VALUE) {
        do {
            if ((entry.dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0)
                platform::DeleteFileA(m_tempPath + "\\" + entry.cFileName);
        } while (platform::FindNextFileA(search, entry) != 0);
        platform::FindClose(search);
    }
    platform::RemoveDirectoryA(m_tempPath);
}

unsigned int CMailDoc::GetMailSize() const {
    std::uint64_t total = CBase64::CalcEnecodedSize(static_cast<unsigned int>(m_body.GetLength()));
    for (const FileInfo& file : m_files)
        total += CBase64::CalcEnecodedSize(static_cast<unsigned int>(CFileUtility::GetFileSize(file.Path)));
    return static_cast<unsigned int>(std::min<std::uint64_t>(total, std::numeric_limits<unsigned int>::max()));
}
