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
#include <string>
#include <utility>
#include <vector>

#include <mailengine/support/platform/System.h>
#include <mailengine/support/platform/WindowSystem.h>

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
    std::size_t DialogCount() const { return m_dialogs.size(); }
    bool Enabled(HWND window) { return Known(window).enabled; }
    // The lines noted so far that begin with prefix, one text; forgets all.
    std::string TakeCalls(const std::string& prefix = "") {
        std::string text;
        for (const std::string& line : std::exchange(calls, {}))
            if (line.starts_with(prefix)) text += line + "\n";
        return text;
    }
    long CountCalls(const std::string& prefix) const {
        return std::count_if(calls.begin(), calls.end(), [&](const auto& line) { return line.starts_with(prefix); });
    }

    HWND MakeDialog(const platform::DialogTemplate& dialog, HWND parent) override {
        const std::string line = " " + std::to_string(dialog.id) + " on " + NameOrNone(parent);
        if (!makesDialogs) return Note("fail" + line), nullptr;
        const std::string name = "dialog" + std::to_string(++m_made);
        const HWND window = Add(name, parent);
        m_dialogs.push_back(window);
        for (const platform::DialogControl& control : dialog.controls)
            Add(name + "." + std::to_string(control.id), window);
        Note("make " + name + line);
        return window;
    }
    HWND GetControl(HWND dialog, int id) override {
        const std::string name = Name(dialog) + "." + std::to_string(id);
        for (const auto& [window, facts] : m_windows)
            if (facts.name == name) return window;
        return nullptr;
    }
    void DestroyWindow(HWND window) override {
        Note("destroy " + Name(window));
        std::erase(m_dialogs, window);
        std::erase_if(m_windows, [&](const auto& one) { return one.first == window || one.second.parent == window; });
    }
    void ShowWindow(HWND window, int state) override { Note("show " + Name(window) + " " + std::to_string(state)); }
    void EnableWindow(HWND window, int enable) override {
        Known(window).enabled = enable != 0;
        Note("enable " + Name(window) + " " + std::to_string(enable));
    }
    void SetWindowText(HWND window, const CString& text) override {
        Note("text " + Name(window) + " " + std::string(text.View()));
    }
    void SetProgressRange(HWND bar, int lowest, int highest) override {
        Note("range " + Name(bar) + " " + std::to_string(lowest) + " " + std::to_string(highest));
    }
    void SetProgressPosition(HWND bar, int position) override {
        Note("position " + Name(bar) + " " + std::to_string(position));
    }
    int MessageWaits() override { return !m_messages.empty(); }
    int PumpMessage() override {
        Note("pump");
        const std::function<void()> handler = std::move(m_messages.front());
        m_messages.pop_front();
        handler();
        return 1;
    }
    int OnIdle(int count) override {
        Note("idle " + std::to_string(count));
        if (whenIdle) whenIdle();
        return 0;
    }
    // The line of a box: owner, style in decimal, caption, text.
    int MessageBox(HWND owner, const CString& text, const CString& caption, unsigned int style) override {
        Note("box " + NameOrNone(owner) + " " + std::to_string(style) + " " + std::string(caption.View()) + "|" +
             std::string(text.View()));
        return boxAnswer;
    }
    int RunFileDialog(HWND owner, const FileDialogRequest& request, CString& path) override {
        Note("files " + NameOrNone(owner) + " " + std::to_string(request.open) + " " +
             std::string(request.fileName.View()));
        if (paths.empty()) return IDCANCEL;
        path = CString(paths.front().c_str());
        paths.pop_front();
        return IDOK;
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
    void Note(const std::string& line) {
        calls.push_back(line);
        if (whenNoted) whenNoted(line);
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
