// CallbackWindows: a window system for a host without windows. The progress dialog is a callback, its Cancel button the
// callback's answer. Installed while it lives; one at a time, on the thread of the work.
#pragma once

#include <chrono>
#include <hostkit/letter/Outcome.h>
#include <list>

#include <mailengine/support/platform/windows/WindowSystem.h>

namespace hostkit {

class CallbackWindows : public CWindowSystem {
public:
    // progress is lent.
    explicit CallbackWindows(const Progress& progress);
    ~CallbackWindows() override;

    // Tells the callback of the end, whatever it answers. To be called for a work that was done.
    void Finish();

    HWND MakeDialog(const platform::DialogTemplate& dialog, HWND parent) override;
    HWND GetControl(HWND dialog, int id) override;
    void DestroyWindow(HWND window) override;
    void ShowWindow(HWND window, int state) override;
    void EnableWindow(HWND, int) override {}
    void SetWindowText(HWND, const CString&) override {}
    void SetProgressRange(HWND bar, int lowest, int highest) override;
    void SetProgressPosition(HWND bar, int position) override;
    int MessageWaits() override;
    int PumpMessage() override;
    int OnIdle(int) override { return 0; }
    int MessageBox(HWND, const CString&, const CString&, unsigned int) override { return IDOK; }
    int RunFileDialog(HWND, const FileDialogRequest&, CString&) override { return IDCANCEL; }

private:
    using Clock = std::chrono::steady_clock;

    HWND Dialog() { return reinterpret_cast<HWND>(this); }
    void Ask();

    const Progress& m_progress;
    CWindowSystem* m_pBefore;
    std::list<int> m_controls;  // numbers of the controls that were asked for
    bool m_bStands = false;
    bool m_bCancelled = false;
    bool m_bPressed = false;  // a cancel that the dialog has not been told
    int m_nLowest = 0;
    int m_nHighest = 100;
    int m_nPercent = 0;
    Clock::time_point m_lastAsked;
};

}  // namespace hostkit
