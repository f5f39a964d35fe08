// CDialog: a modeless dialog made from a template of the resource registry. It stands from Create to DestroyWindow.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/windows/DataExchange.h>
#include <mailengine/support/platform/windows/Wnd.h>

class MAILENGINE_API CDialog : public CWnd {
public:
    // For that template and parent, which may be null and is lent. No window yet.
    explicit CDialog(int resourceId, CWnd* parent = nullptr) : m_nResourceId(resourceId), m_pParentWnd(parent) {}
    // Destroys the window if it stands. The handlers of derived classes are gone by then: call DestroyWindow before.
    ~CDialog() override;

    // Makes the window, not shown yet, and runs OnInitDialog. parent may be null, or have no window: the dialog then
    // stands on its own. 0: no loaded library has the template, the window system made no window, it went again
    // during OnInitDialog, or there is one already.
    int Create(int resourceId, CWnd* parent = nullptr);
    // The same with what the constructor was given.
    int Create() { return Create(m_nResourceId, m_pParentWnd); }

protected:
    // Binds the fields to the controls.
    virtual void DoDataExchange(CDataExchange* pDX);
    // Runs once when the window was made, before it is shown. 1: the keyboard goes to the first control.
    virtual int OnInitDialog();
    // The commands IDOK and IDCANCEL. Nothing happens: the dialog stands until somebody destroys it.
    virtual void OnOK();
    virtual void OnCancel();
    int OnCommand(int id) override;

private:
    int m_nResourceId;
    CWnd* m_pParentWnd;
};
