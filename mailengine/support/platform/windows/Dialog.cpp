#include <mailengine/support/platform/windows/Dialog.h>
#include <mailengine/support/platform/windows/ResourceRegistry.h>
#include <mailengine/support/platform/windows/WindowSystem.h>

CDialog::~CDialog() {
    CWnd::DestroyWindow();
}

int CDialog::Create(int resourceId, CWnd* parent) {
    const platform::DialogTemplate* const dialog = platform::FindDialogTemplate(resourceId);
    if (dialog == nullptr || m_hWnd != nullptr) return 0;
    const HWND owner = HandleOf(parent);
    if (Bind(CWindowSystem::Get().MakeDialog(*dialog, owner), owner) == 0) return 0;
    OnInitDialog();
    return m_hWnd != nullptr;
}

void CDialog::DoDataExchange(CDataExchange*) {}

int CDialog::OnInitDialog() {
    CDataExchange exchange(this);
    DoDataExchange(&exchange);
    return 1;
}

void CDialog::OnOK() {}

void CDialog::OnCancel() {}

int CDialog::OnCommand(int id) {
    switch (id) {
        case IDOK:
            OnOK();
            return 1;
        case IDCANCEL:
            OnCancel();
            return 1;
        default:
            return 0;
    }
}
