// CTerminalWindows: the terminal as a window system. A progress dialog is one line on stderr, Ctrl-C is its Cancel
// button, a message box is a line. Installed while it lives; one at a time, on the main thread.
//
// Where stderr is a terminal the line holds caption, bar and percentage and is drawn anew at most 20 times a second;
// elsewhere a plain line says that the operation began. With quiet neither is shown. The bar of an operation that is
// cancelled stays where it was; that of any other goes to its end, and the command says below what came of it.
//
// The first Ctrl-C cancels as the dialog would, at the next look at the messages; a second one ends the program.
#pragma once

#include <chrono>
#include <csignal>
#include <list>
#include <string>

#include <mailengine/support/platform/windows/WindowSystem.h>

class CTerminalWindows : public CWindowSystem {
public:
    explicit CTerminalWindows(bool quiet);
    ~CTerminalWindows() override;

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

private:
    // A dialog, or a control on one.
    struct Window {
        int id = 0;
        const Window* dialog = nullptr;  // null: it is one itself
        CString text;
    };
    using Clock = std::chrono::steady_clock;

    static Window* Of(HWND window) { return reinterpret_cast<Window*>(window); }
    static HWND Handle(Window& window) { return reinterpret_cast<HWND>(&window); }
    HWND Add(int id, const Window* dialog);
    Window* Dialog();
    bool IsDrawn() const { return !m_bQuiet && m_bTerminal; }
    void DrawIfDue();
    std::string Caption();

    const bool m_bQuiet;
    const bool m_bTerminal;
    CWindowSystem* m_pBefore;
    struct sigaction m_oldInterrupt {};
    std::list<Window> m_windows;
    int m_nLowest = 0;
    int m_nHighest = 100;
    int m_nPercent = 0;
    int m_nDrawn = -1;  // the percentage on the screen; -1: none
    bool m_bShown = false;
    bool m_bCancelled = false;
    Clock::time_point m_lastDrawing;
};
