// The multipart message: attached files and attached mails.
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/base/Exception.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/writer/AttachmentCheck.h>
#include <mailengine/writer/EMailWriter.h>

// What sets an attached file and an attached mail apart.
struct CEMailWriter::AttachmentKind {
    const char* mediaType;
    const char* transferEncoding;
    int (CEMailWriter::*writeContent)(CFile& file);
    const char* fieldsFailed;
    const char* contentFailed;
};

namespace {

constexpr unsigned int kReadOnly = CFile::modeRead | CFile::shareDenyNone | CFile::typeBinary;
constexpr unsigned int kFilePieceBytes = 540;   // ten lines of Base64
constexpr unsigned int kMailPieceBytes = 1023;  // and a NUL behind them
static_assert(kFilePieceBytes % wire::kBase64LineBytes == 0);

constexpr int kNamePrefixBytes = 6;  // TAB and "name="

CString Delimiter(const CString& boundary) {
    return wire::kDelimiterHyphens + boundary;
}

CStringArray OneParameter(const CString& parameter) {
    CStringArray params;
    params.SetAtGrow(0, parameter);
    return params;
}

int OpenAttachment(const CString& path, CFile& file) {
    return file.Open(path, kReadOnly, nullptr);
}

}  // namespace

int CheckAttachments(const std::vector<CMailDoc::FileInfo>& files, CString& error) {
    CString missing;
    for (const CMailDoc::FileInfo& file : files)
        if (CFile attachment; OpenAttachment(file.Path, attachment) == 0) missing += file.Path + wire::kCrLf;
    if (missing.IsEmpty()) return 1;
    error = CString(texts::kAttachmentOpenFailed) + texts::kAttachmentsMissing + missing;
    return 0;
}

int CEMailWriter::CheckFiles(const std::vector<FileInfo>& files, CString& error) {
    return CheckAttachments(files, error);
}

void CEMailWriter::WriteBetween(const CString& text) {
    (void)m_pStream->WriteString(text);  // a stream in trouble fails the next write too, or says so when it is closed
}

// QUIRK: two messages of one process and second share the boundary, and no part is searched for it (RFC 2046 5.1.1
// wants one that occurs in none).
CString CEMailWriter::MakeNewBoundary() {
    CString boundary;
    boundary.Format("%s_%08X_%08X", "BOUNDARY", CSystem::Get().Time(), CSystem::Get().ProcessId());
    return boundary;
}

int CEMailWriter::WriteMixed(const CString& body, const std::vector<FileInfo>& files, CString& error) {
    const CString boundary = MakeNewBoundary();
    if (WriteFieldValue(wire::kContentType, wire::kMultipartMixed, OneParameter("boundary=" + boundary)) == 0) return 0;
    WriteBetween(wire::kCrLf);
    WriteBetween(Delimiter(boundary) + wire::kCrLf);
    if (WriteBody(body, error) == 0) return 0;
    int status = 1;
    for (std::size_t i = 0; i < files.size() && status != 0; ++i) {
        WriteBetween(wire::kCrLf + Delimiter(boundary) + wire::kCrLf);
        const bool mail = platform::mbscmp(CFileUtility::GetFileExt(files[i].Path), "eml") == 0;
        status = mail ? WriteEMail(files[i], error) : WriteFile(files[i], error);
    }
    // QUIRK: no CRLF in front of the closing delimiter (RFC 2046 5.1.1 counts it to the delimiter), so a reader takes
    // the last line end of the last part for it.
    WriteBetween(Delimiter(boundary) + wire::kDelimiterHyphens + wire::kCrLf);
    return status;
}

// QUIRK: the media type has no subtype (RFC 2045 5.1).
int CEMailWriter::WriteFile(const FileInfo& file, CString& error) {
    static constexpr AttachmentKind kFile = {"application", wire::kBase64, &CEMailWriter::WriteFileContent,
                                             texts::kFileFieldsFailed, texts::kFileContentFailed};
    return WriteAttachment(file, kFile, error);
}

int CEMailWriter::WriteEMail(const FileInfo& file, CString& error) {
    static constexpr AttachmentKind kMail = {wire::kAttachedMail, "7bit", &CEMailWriter::WriteMailContent,
                                             texts::kMailFieldsFailed, texts::kMailContentFailed};
    return WriteAttachment(file, kMail, error);
}

int CEMailWriter::WriteAttachment(const FileInfo& file, const AttachmentKind& kind, CString& error) {
    if (file.Path.IsEmpty()) return 0;
    if (WriteAttachmentFields(file, kind) == 0) {
        error = kind.fieldsFailed;
        return 0;
    }
    WriteBetween(wire::kCrLf);
    CFile content;
    if (OpenAttachment(file.Path, content) == 0) {
        error = CString(texts::kAttachmentOpenFailed) + wire::kCrLf + file.Path;
        return 0;
    }
    if ((this->*kind.writeContent)(content) != 0) return 1;
    error = kind.contentFailed + file.Path;
    return 0;
}

// QUIRK: encoded words stand inside the quotes of a parameter (RFC 2047 5 forbids it; RFC 2231 4 has another form).
int CEMailWriter::WriteAttachmentFields(const FileInfo& file, const AttachmentKind& kind) {
    const CString name = EncodeFieldValue(CFileUtility::GetFileNameFromPath(file.Path), kNamePrefixBytes);
    return WriteFieldValue(wire::kContentType, kind.mediaType, OneParameter("name=\"" + name + "\"")) != 0 &&
           WriteFieldValue(wire::kContentTransferEncoding, kind.transferEncoding) != 0 &&
           WriteFieldValue("Content-Disposition", "attachment", OneParameter("filename=\"" + name + "\"")) != 0;
}

int CEMailWriter::WriteFileContent(CFile& file) {
    unsigned char piece[kFilePieceBytes];
    try {
        for (unsigned int read; (read = file.Read(piece, sizeof piece)) > 0;)
            if (WriteBase64(piece, read) == 0) return 0;
    } catch (CFileException* exception) {
        exception->Delete();
        return 0;
    }
    return 1;
}

// The content goes out under 7bit whatever it holds. A NUL ends its piece, since a stream takes texts.
int CEMailWriter::WriteMailContent(CFile& file) {
    int status = 1;
    try {
        for (unsigned int read = 1; status != 0 && read > 0;) {
            char piece[kMailPieceBytes + 1] = {};
            read = file.Read(piece, kMailPieceBytes);
            if (read > 0) status = m_pStream->WriteString(piece);
        }
        file.Close();
    } catch (CFileException* exception) {
        exception->Delete();
        status = 0;
    }
    WriteBetween(wire::kCrLf);
    return status;
}
