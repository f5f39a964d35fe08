#include <iterator>

#include <mailengine/support/ProgressDialog.h>
#include <mailengine/support/Resources.h>

const AFX_MSGMAP_ENTRY CProgressDialog::s_entries[] = {
    {WM_KILLFOCUS, [](CCmdTarget& target) { static_cast<CProgressDialog&>(target).OnKillFocus(); }},
    {WM_DESTROY, [](CCmdTarget& target) { static_cast<CProgressDialog&>(target).OnDestroy(); }},
};
const AFX_MSGMAP CProgressDialog::s_messageMap = {&CDialog::messageMap, s_entries, std::ssize(s_entries)};

CProgressDialog::CProgressDialog(const char* title, int showCancel, CWnd* parent)
    : CDialog(resources::kProgressDialogTemplate.id, parent),
      m_strTitle(title),
      m_nShowCancel(showCancel),
      m_bContinue(1) {}

const AFX_MSGMAP* CProgressDialog::GetMessageMap() const {
    return &s_messageMap;
}

void CProgressDialog::DoDataExchange(CDataExchange* pDX) {
    DDX_Control(pDX, IDCANCEL, m_btnCancel);
    DDX_Control(pDX, resources::kProgressBar, m_ctrlProgress);
}

int CProgressDialog::OnInitDialog() {
    CDialog::OnInitDialog();
    SetWindowTextA(m_strTitle);
    m_ctrlProgress.SendMessageA(PBM_SETRANGE, 0, MAKELPARAM(0, 100));
    m_btnCancel.ShowWindow(m_nShowCancel);
    if (CWnd* const parent = GetParent()) parent->EnableWindow(0);
    return 1;
}

void CProgressDialog::OnCancel() {
    m_bContinue = 0;
}

void CProgressDialog::OnKillFocus() {
    Default();
}

void CProgressDialog::OnDestroy() {
    if (CWnd* const parent = GetParent()) parent->EnableWindow(1);
    CWnd::OnDestroy();
}
