// A window system without a screen for tests: it notes every call as a line of text, plays the messages and answers
// that a test queued, and fails the test when it is handed a window that does not stand. It is installed while it
// lives. Windows have names in the lines: the host's own as given to HostWindow, dialog1, dialog2, ... and their
// controls dialog1.2, dialog1.1086.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <mailengine/support/platform/system/System.h>
#include <mailengine/support/platform/windows/WindowSystem.h>

class ScriptedWindowSystem : public CWindowSystem {
public:
    ScriptedWindowSystem() : m_before(Install(this)) {}
    ~ScriptedWindowSystem() override { Install(m_before); }

    std::vector<std::string> calls;
    bool makesDialogs = true;
    std::function<void()> whenIdle;                          // runs in each OnIdle
    std::function<void(const std::string& line)> whenNoted;  // runs in the call that noted the line
    std::deque<std::string> paths;                           // what file dialogs choose; with none left they cancel
    int boxAnswer = IDOK;

    // A window of the host's, for CWnd::Attach.
    HWND HostWindow(const std::string& name) { return Add(name, nullptr); }
    // A message that runs handler when it is dispatched.
    void Post(std::function<void()> handler) { m_messages.push_back(std::move(handler)); }
    // A message that presses a button (or chooses a command) in the dialog that stands when it is dispatched.
    void PostCommand(int id) {
        Post([this, id] { platform::DeliverCommand(Dialog(), id); });
    }
    // The dialog made last of those that stand, null if none stands.
    HWND Dialog() const { return m_dialogs.empty() ? nullptr : m_dialogs.back(); }
    int DialogCount() const { return static_cast<int>(m_dialogs.size()); }
    bool Enabled(HWND window) { return Known(window).enabled; }
    // The lines noted so far that begin with prefix, one text; forgets all.
    std::string TakeCalls(const std::string& prefix = "") {
        std::string text;
        for (const std::string& line : std::exchange(calls, {}))
            if (line.starts_with(prefix)) text += line + "\n";
        return text;
    }

    HWND MakeDialog(const platform::DialogTemplate& dialog, HWND parent) override {
        const std::string name = makesDialogs ? "dialog" + std::to_string(++m_made) : "no";
        const HWND window = makesDialogs ? Add(name, parent) : nullptr;
        if (window != nullptr) {
            m_dialogs.push_back(window);
            for (const platform::DialogControl& control : dialog.controls)
                Add(name + "." + std::to_string(control.id), window);
        }
        return Note("make", name, dialog.id, "on", NameOrNone(parent)), window;
    }
    HWND GetControl(HWND dialog, int id) override {
        const std::string name = Name(dialog) + "." + std::to_string(id);
        const auto found = std::ranges::find_if(m_windows, [&](const auto& one) { return one.second.name == name; });
        return found == m_windows.end() ? nullptr : found->first;
    }
    void DestroyWindow(HWND window) override {
        Note("destroy", Name(window));
        std::erase(m_dialogs, window);
        std::erase_if(m_windows, [&](const auto& one) { return one.first == window || one.second.parent == window; });
    }
    void ShowWindow(HWND window, int state) override { Note("show", Name(window), state); }
    void EnableWindow(HWND window, int enable) override {
        Known(window).enabled = enable != 0;
        Note("enable", Name(window), enable);
    }
    void SetWindowText(HWND window, const CString& text) override { Note("text", Name(window), text); }
    void SetProgressRange(HWND bar, int low, int high) override { Note("range", Name(bar), low, high); }
    void SetProgressPosition(HWND bar, int position) override { Note("position", Name(bar), position); }
    int MessageWaits() override { return !m_messages.empty(); }
    int PumpMessage() override {
        Note("pump");
        const std::function<void()> handler = std::move(m_messages.front());
        m_messages.pop_front();
        return handler(), 1;
    }
    int OnIdle(int count) override {
        Note("idle", count);
        if (whenIdle) whenIdle();
        return 0;
    }
    int MessageBox(HWND owner, const CString& text, const CString& caption, unsigned int style) override {
        return Note("box", NameOrNone(owner), style, caption + "|" + text), boxAnswer;
    }
    int RunFileDialog(HWND owner, const FileDialogRequest& request, CString& path) override {
        Note("files", NameOrNone(owner), request.open, request.fileName);
        if (paths.empty()) return IDCANCEL;
        path = CString(paths.front().c_str());
        return paths.pop_front(), IDOK;
    }

private:
    struct Window {
        std::string name;
        HWND parent = nullptr;
        bool enabled = true;
    };

    HWND Add(const std::string& name, HWND parent) {
        const HWND window = reinterpret_cast<HWND>(++m_lastHandle);  // never used again: an old handle is found out
        m_windows[window] = {name, parent};
        return window;
    }
    Window& Known(HWND window) {
        if (!m_windows.contains(window)) ADD_FAILURE() << "a window that does not stand, after:\n" << TakeCalls();
        return m_windows[window];
    }
    std::string Name(HWND window) { return Known(window).name; }
    std::string NameOrNone(HWND window) { return window == nullptr ? "none" : Name(window); }
    template <class... Parts>
    void Note(const char* call, const Parts&... parts) {
        std::ostringstream line;
        line << call;
        ((line << ' ' << parts), ...);
        calls.push_back(line.str());
        if (whenNoted) whenNoted(line.str());
    }

    CWindowSystem* m_before;
    std::map<HWND, Window> m_windows;
    std::vector<HWND> m_dialogs;
    std::deque<std::function<void()>> m_messages;
    std::uintptr_t m_lastHandle = 0;
    int m_made = 0;
};

// A CSystem that notes the pauses it is asked for and takes none. Installed while it lives.
class SleeplessSystem : public CSystem {
public:
    explicit SleeplessSystem(std::vector<std::string>& calls) : m_calls(calls), m_before(Install(this)) {}
    ~SleeplessSystem() override { Install(m_before); }
    void Sleep(unsigned int milliseconds) override { m_calls.push_back("sleep " + std::to_string(milliseconds)); }

private:
    std::vector<std::string>& m_calls;
    CSystem* m_before;
};
