// ToolkitWindows: the library's dialogs, message boxes, file dialogs and socket waits on wxWidgets. A host links this
// library, keeps one such object while windows stand, and installs it:
//
//     desktop::ToolkitWindows windows;
//     CWindowSystem::Install(&windows);
//     CWnd parent;
//     parent.Attach(desktop::ToolkitWindows::HandleOf(frame));
//
// All contracts are those of CWindowSystem. It works inside the toolkit's main loop and where none runs. Without a
// started toolkit nothing is drawn: a dialog cannot be made, a box answers IDOK, a file dialog IDCANCEL.
//
// A progress dialog is modeless, so handlers of the host, its idle handlers too, run while a mail is written. Nothing
// but its disabled parent keeps them from touching the mail: disable or guard windows of the host's own.
#pragma once

#include <chrono>
#include <desktop/Export.h>

#include <mailengine/support/platform/windows/WindowSystem.h>

class wxWindow;

namespace desktop {

class DESKTOP_API ToolkitWindows : public CWindowSystem {
public:
    // How the library is told of a window of the host's (CWnd::Attach). The host detaches it before the window goes.
    // Null for null.
    static HWND HandleOf(wxWindow* window);

    HWND MakeDialog(const platform::DialogTemplate& dialog, HWND parent) override;
    HWND GetControl(HWND dialog, int id) override;
    void DestroyWindow(HWND window) override;
    void ShowWindow(HWND window, int state) override;
    void EnableWindow(HWND window, int enable) override;
    void SetWindowText(HWND window, const CString& text) override;
    void SetProgressRange(HWND bar, int lowest, int highest) override;
    void SetProgressPosition(HWND bar, int position) override;
    int MessageWaits() override;
    int PumpMessage() override;
    int OnIdle(int count) override;
    int MessageBox(HWND owner, const CString& text, const CString& caption, unsigned int style) override;
    int RunFileDialog(HWND owner, const FileDialogRequest& request, CString& path) override;
    int WaitForSocket(int descriptor, int events, int timeout) override;

private:
    using Clock = std::chrono::steady_clock;

    bool m_bBurst = false;         // MessageWaits has said yes, and not yet no again
    Clock::time_point m_burstEnd;  // of the burst
    Clock::time_point m_lastNo;
    Clock::time_point m_lastIdle;
};

}  // namespace desktop
