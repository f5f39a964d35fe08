// CFileDialog: lets the user choose a path. A host may derive from it, for instance to answer without a screen: its
// DoModal then sets m_strPathName. User-interface thread.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/windows/WindowSystem.h>
#include <mailengine/support/platform/windows/Wnd.h>

class MAILENGINE_API CFileDialog {
public:
    // open: 1 to choose an existing file, 0 to name one to save to. Texts are code page 932; FileDialogRequest tells
    // what they mean. parent, lent for the life of the dialog, owns the dialog on the screen; it may be null.
    explicit CFileDialog(int open, const char* defaultExtension = nullptr, const char* fileName = nullptr,
                         const char* filter = nullptr, CWnd* parent = nullptr);
    CFileDialog(const CFileDialog&) = delete;
    CFileDialog& operator=(const CFileDialog&) = delete;
    virtual ~CFileDialog() = default;

    // Runs the dialog until the user is done. IDOK: GetPathName gives the choice. IDCANCEL: nothing was chosen, and
    // the path is as before.
    virtual int DoModal();
    // The full path last chosen, code page 932 with backslashes; empty before.
    CString GetPathName() const { return m_strPathName; }

protected:
    CString m_strPathName;

private:
    FileDialogRequest m_request;
    CWnd* m_pParent;
};
