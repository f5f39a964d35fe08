// CDataExchange: what a dialog hands to its DoDataExchange, in which its fields are bound to the controls.
#pragma once

#include <mailengine/support/platform/windows/Wnd.h>

class CDataExchange {
public:
    explicit CDataExchange(CWnd* dialog) : m_pDlgWnd(dialog) {}
    CWnd* m_pDlgWnd;
};

// Binds control to the dialog's control with that number. One that is bound stays so; one that the window system does
// not have leaves the object without a window.
inline void DDX_Control(CDataExchange* pDX, int id, CWnd& control) {
    if (control.m_hWnd == nullptr) (void)control.SubclassDlgItem(id, pDX->m_pDlgWnd);
}
