// A display without a screen for the tests of windows, and a user in front of it.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/frame.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include "tests/TempFolder.h"

// A display server of the test's own, at a number that it finds free. It goes with the test, however that ends.
class Screen {
public:
    Screen() {
        int number[2];
        if (pipe(number) != 0) std::abort();
        const std::string descriptor = std::to_string(number[1]);
        m_server = fork();
        if (m_server == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            freopen("/dev/null", "w", stderr);
            execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                   nullptr);
            _exit(127);
        }
        close(number[1]);
        std::string name(":");
        for (char digit = 0; read(number[0], &digit, 1) == 1 && digit != '\n';)
            name += digit;
        close(number[0]);
        const std::pair<const char*, std::string> settings[] = {{"DISPLAY", name},
                                                                {"HOME", m_home.Native()},
                                                                {"XDG_CONFIG_HOME", m_home.Native()},
                                                                {"XDG_DATA_HOME", m_home.Native()},
                                                                {"XDG_CACHE_HOME", m_home.Native()},
                                                                {"NO_AT_BRIDGE", "1"},
                                                                {"GDK_BACKEND", "x11"},
                                                                {"GSETTINGS_BACKEND", "memory"}};
        for (const auto& [variable, value] : settings)
            setenv(variable, value.c_str(), 1);
    }
    ~Screen() {
        kill(m_server, SIGTERM);
        waitpid(m_server, nullptr, 0);
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

private:
    CTempFolder m_home;
    pid_t m_server = -1;
};

// The pixels of a piece of the screen.
inline std::string Pixels(const wxRect& piece) {
    GdkPixbuf* const picture =
        gdk_pixbuf_get_from_window(gdk_get_default_root_window(), piece.x, piece.y, piece.width, piece.height);
    const auto* const bytes = reinterpret_cast<const char*>(gdk_pixbuf_read_pixels(picture));
    const std::string pixels(bytes, gdk_pixbuf_get_byte_length(picture));
    g_object_unref(picture);
    return pixels;
}

// Dispatches messages until that is so; a failure after some time.
inline void PumpUntil(const std::function<bool()>& isSo) {
    wxEventLoop loop;
    const wxEventLoopActivator active(&loop);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isSo()) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited in vain";
        loop.DispatchTimeout(20);
        loop.ProcessIdle();
    }
}

// What a user does at the moment at which something is so, be it in front of a dialog that runs a loop of its own.
class User : private wxTimer {
public:
    using Step = std::pair<std::function<bool()>, std::function<void()>>;
    explicit User(std::vector<Step> steps) : m_steps(std::move(steps)) { Start(20); }
    ~User() override { EXPECT_EQ(m_next, m_steps.size()) << "a step that never had its moment"; }

    static void Click(const wxWindow& window) {
        PointAt(window);
        wxUIActionSimulator().MouseClick();
    }
    // Without a window manager the keyboard is the window's that lies under the pointer.
    static void Press(const wxWindow& window, int key) {
        PointAt(window);
        wxUIActionSimulator().Char(key);
    }

private:
    static void PointAt(const wxWindow& window) {
        const wxRect place = window.GetScreenRect();
        wxUIActionSimulator().MouseMove(place.x + place.width / 2, place.y + place.height / 2);
    }
    void Notify() override {
        const auto now = std::chrono::steady_clock::now();
        if (m_next < m_steps.size() && m_steps[m_next].first())
            m_steps[m_next++].second();
        else if (m_next > 0 && now >= m_again && m_steps[m_next - 1].first())
            m_steps[m_next - 1].second();  // a busy machine loses keys that come before the dialog has the keyboard
        else
            return;
        m_again = now + std::chrono::seconds(2);
    }

    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    std::chrono::steady_clock::time_point m_again;
};

// Runs the tests of a program with a started toolkit, in one process: each would need a display of its own.
inline int RunOnScreen(int argc, char** argv, const std::function<int()>& run) {
    testing::InitGoogleTest(&argc, argv);
    const Screen screen;
    wxApp::SetInstance(new wxApp);
    if (!wxEntryStart(argc, argv)) return 1;
    const int result = run();
    wxEntryCleanup();
    return result;
}
