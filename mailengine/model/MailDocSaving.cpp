// Saving a document as a message file, under the user's eyes.
#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/files/FileSystem.h>
#include <mailengine/support/platform/windows/FileDialog.h>
#include <mailengine/support/platform/windows/Wnd.h>
#include <mailengine/writer/EMailWriter.h>
#include <mailengine/writer/FileOutStream.h>

namespace {

void Complain(CWnd& parent, const char* text) {
    parent.MessageBoxA(text, texts::kSaveCaption, MB_OK | MB_ICONEXCLAMATION);
}

}  // namespace

int CMailDoc::SaveAs(CWnd* parent, CFileDialog* dialog) {
    if (parent == nullptr || dialog == nullptr) return 0;
    if (dialog->DoModal() != IDOK) return 1;
    const CString path = dialog->GetPathName();
    CFileOutStream stream(path);
    // Opening empties the file, so an attachment saved over would be lost before it is read.
    if (IsAttached(path) || stream.Open() == 0) {
        Complain(*parent, texts::kSaveCreateFailed);
        return 0;
    }
    CProgressCallback progress(texts::kSaving, 1, parent);
    progress.Start(GetMailSize());
    CString error;
    int written = CEMailWriter(&stream, *this, progress).Write(error);
    progress.Complete();
    stream.Close();
    if (stream.Failed() != 0) written = 0;
    if (written != 0) {
        SetModifiedFlag(0);
        return 1;
    }
    platform::DeleteFileA(path);
    if (progress.UserCanceled() == 0) Complain(*parent, texts::kSaveFailed);
    return 1;
}

bool CMailDoc::IsAttached(const CString& path) const {
    for (const FileInfo& file : m_files)
        if (platform::IsSameFile(path, file.Path) != 0) return true;
    return false;
}
