// CProgressDialog: the small modeless window behind CProgressCallback, with a caption, a bar from 0 to 100 and a Cancel
// button. Its parent is disabled while it stands, which keeps the user from starting a second operation.
#pragma once

#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/windows/Button.h>
#include <mailengine/support/platform/windows/Dialog.h>
#include <mailengine/support/platform/windows/ProgressCtrl.h>

class CProgressDialog : public CDialog {
public:
    // No window yet. showCancel: 0 hides the Cancel button, 1 shows it. parent is that of Create, which is told again.
    CProgressDialog(const char* title, int showCancel, CWnd* parent);
    ~CProgressDialog() override = default;

    CButton m_btnCancel;
    CProgressCtrl m_ctrlProgress;
    CString m_strTitle;
    int m_nShowCancel;
    int m_bContinue;  // 0 once Cancel was pressed

    const AFX_MSGMAP* GetMessageMap() const override;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    int OnInitDialog() override;
    // Leaves the mark in m_bContinue. The dialog stays until CProgressCallback sees it.
    void OnCancel() override;
    void OnKillFocus();
    void OnDestroy();

private:
    static const AFX_MSGMAP_ENTRY s_entries[];
    static const AFX_MSGMAP s_messageMap;
};
