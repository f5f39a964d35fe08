// CWnd: a window as the library's classes see it, in front of the installed CWindowSystem. An object without a window
// (m_hWnd is null) is fine everywhere: what is asked of it has no effect. All on the user-interface thread.
#pragma once

#include <mailengine/support/platform/base/CmdTarget.h>
#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/windows/WindowTypes.h>

class MAILENGINE_API CWnd : public CCmdTarget {
public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    // Lets go of the window, which stays on the screen.
    ~CWnd() override;

    // The window, null if there is none. Read it; only the operations below set it.
    HWND m_hWnd = nullptr;

    // Binds the object to a window that the host made, and that its window system knows by this handle. The host
    // keeps the window. 0: the handle is null, the object has a window, or another object has this one.
    int Attach(HWND window) { return Bind(window, nullptr); }
    // Lets go of the window, which stays on the screen, and gives its handle; null if there was none. A window that
    // is a dialog's parent stays attached until the dialog is gone: only so is it enabled again.
    HWND Detach();
    // Binds the object to a control of the dialog. 0: the dialog or the control has no window, or as in Attach.
    int SubclassDlgItem(int id, const CWnd* dialog);

    // The object that has the window, null if none has.
    static CWnd* FromHandle(HWND window);
    // The window of an object, null for null.
    static HWND HandleOf(const CWnd* wnd) { return wnd == nullptr ? nullptr : wnd->m_hWnd; }
    // The object of the window's parent; null if there is no parent or no object has it.
    CWnd* GetParent() const { return FromHandle(m_hParent); }

    void ShowWindow(int state);
    void EnableWindow(int enable = 1);
    // Sets the caption, or a control's text; code page 932, up to the NUL.
    void SetWindowTextA(const char* text);
    // Runs the message's handler, or else the default handling, and gives its result. 0 without a window.
    LRESULT SendMessageA(unsigned int message, WPARAM wParam = 0, LPARAM lParam = 0);
    // Shows a text until the user answers; code page 932. Works without a window too: the box then has no owner.
    // style is an MB_ value; the result is the button pressed (IDOK).
    int MessageBoxA(const char* text, const char* caption = nullptr, unsigned int style = MB_OK);
    // Runs the destroy handlers of the window and of what stands on it, lets go of them and takes them off the
    // screen. 0: there was no window, or it is being destroyed already. The object stays.
    virtual int DestroyWindow();

protected:
    // Handles one message: by OnCommand, by the message map, or by default.
    virtual LRESULT WindowProc(unsigned int message, WPARAM wParam, LPARAM lParam);
    // What is done with a message that nobody handles. 0.
    virtual LRESULT DefWindowProcA(unsigned int message, WPARAM wParam, LPARAM lParam);
    // A command for this window. Not 0: it was handled.
    virtual int OnCommand(int id);
    // Default handling of the message whose handler is running.
    LRESULT Default();
    // The destroy handler that others end with: the default handling.
    void OnDestroy() { Default(); }

    // Attach, for a window that stands on parent, which may be null.
    int Bind(HWND window, HWND parent);

private:
    friend struct WindowDelivery;

    HWND m_hParent = nullptr;
    int m_bDestroying = 0;
    CWnd* m_pNext = nullptr;  // the next object that has a window
};
