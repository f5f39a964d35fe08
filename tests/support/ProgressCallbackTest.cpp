#include <cstring>
#include <memory>
#include <tuple>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/windows/Wnd.h>

#include "tests/support/ScriptedWindowSystem.h"

namespace {

class Progress : public testing::Test {
protected:
    Progress() { m_parent.Attach(m_window); }

    CProgressCallback& Make(CWnd* parent, int showCancel = 1) {
        m_progress = std::make_unique<CProgressCallback>("title", showCancel, parent);
        return *m_progress;
    }
    // A progress object whose dialog stands, with nothing noted yet.
    CProgressCallback& Started(unsigned int total = 100) {
        EXPECT_NE(Make(&m_parent).Start(total), 0);
        m_system.calls.clear();
        return *m_progress;
    }
    // One letter a step: S Start, F Start that finds no window, B Callback, C Complete, ~ the object's end, X Cancel
    // pressed, D the window destroyed by its system. The result is that of the last B.
    int Play(const char* steps) {
        int result = -1;
        for (; *steps != 0; ++steps) {
            m_system.makesDialogs = *steps != 'F';
            if (std::strchr("SF", *steps) != nullptr) {
                EXPECT_EQ(m_progress->Start(10) != 0, *steps == 'S');
            }
            m_system.makesDialogs = true;
            if (*steps == 'B') result = m_progress->Callback(1);
            if (*steps == 'C') m_progress->Complete();
            if (*steps == '~') m_progress.reset();
            if (*steps == 'X') platform::DeliverCommand(m_system.Dialog(), IDCANCEL);
            if (*steps == 'D') Vanish();
        }
        return result;
    }
    void Vanish() {
        platform::DeliverDestroy(m_system.Dialog());
        m_system.DestroyWindow(m_system.Dialog());
    }

    ScriptedWindowSystem m_system;
    SleeplessSystem m_sleepless{m_system.calls};
    const HWND m_window = m_system.HostWindow("parent");
    CWnd m_parent;
    std::unique_ptr<CProgressCallback> m_progress;
};

TEST_F(Progress, AsksTheWindowSystemInOrder) {
    Make(&m_parent);
    m_system.Post([] {});
    Play("S");
    EXPECT_EQ(m_system.TakeCalls(),
              "make dialog1 168 on parent\ntext dialog1 title\nrange dialog1.1086 0 100\nshow dialog1.2 1\n"
              "enable parent 0\nshow dialog1 5\nidle 0\npump\nidle 0\n");
    EXPECT_EQ(Play("B"), 1);
    EXPECT_EQ(m_system.TakeCalls(), "position dialog1.1086 10\nidle 0\n");
    Play("CC");
    EXPECT_EQ(m_system.TakeCalls(), "position dialog1.1086 100\nidle 0\nsleep 100\nenable parent 1\ndestroy dialog1\n");
    Play("SS");
    EXPECT_NE(m_system.TakeCalls().find("idle 0\nenable parent 1\ndestroy dialog2\nmake dialog3"), std::string::npos);
    EXPECT_EQ(m_progress->UserCanceled(), 0);
}

TEST_F(Progress, ShowsWholePercents) {
    const std::tuple<const char*, unsigned int, std::vector<unsigned int>, const char*> rows[] = {
        {"0 stands for 100", 0, {50, 0, 49}, "50 50 99 "},
        {"rounds down", 3, {1, 1, 1}, "33 66 100 "},
        {"products above 32 bits", 4000000000U, {42949672, 1, 1957050327, 2000000000}, "1 1 50 100 "},
        {"a sum above 32 bits", 4294967295U, {4000000000U, 4000000000U, 5}, "93 100 100 "},
    };
    for (const auto& [what, total, amounts, positions] : rows) {
        CProgressCallback& progress = Started(total);
        for (const unsigned int amount : amounts)
            EXPECT_EQ(progress.Callback(amount), 1) << what;
        std::string shown;
        for (const std::string& line : m_system.calls)
            if (line.starts_with("position")) shown += line.substr(line.rfind(' ') + 1) + " ";
        EXPECT_EQ(shown, positions) << what;
    }
}

TEST_F(Progress, WorksWithoutADialog) {
    Make(nullptr);
    m_system.Post([] {});
    EXPECT_EQ(Play("BC"), 1);
    EXPECT_EQ(m_system.TakeCalls(), "idle 0\npump\nidle 0\n");
    Make(&m_parent);
    EXPECT_EQ(Play("FBC"), 1);
    EXPECT_EQ(m_system.TakeCalls(), "make no 168 on parent\nidle 0\nidle 0\nidle 0\nsleep 100\n");
}

TEST_F(Progress, TellsACancelOnce) {
    CProgressCallback& progress = Started();
    m_system.PostCommand(IDCANCEL);
    m_system.PostCommand(IDCANCEL);
    EXPECT_EQ(progress.Callback(10), 1);
    EXPECT_EQ(progress.UserCanceled(), 0);
    m_system.calls.clear();
    EXPECT_EQ(progress.Callback(0), 0);
    EXPECT_EQ(m_system.TakeCalls(),
              "position dialog1.1086 10\nposition dialog1.1086 100\nidle 0\nsleep 100\nenable parent 1\n"
              "destroy dialog1\nidle 0\n");
    EXPECT_EQ(Play("BC"), 1);
    EXPECT_EQ(progress.UserCanceled(), 1);
    EXPECT_EQ(Play("SB"), 1);
    EXPECT_EQ(progress.UserCanceled(), 0);
}

TEST_F(Progress, CancelsByKeyWithAHiddenButton) {
    Make(&m_parent, 0).Start(10);
    EXPECT_EQ(m_system.TakeCalls("show"), "show dialog1.2 0\nshow dialog1 5\n");
    platform::DeliverCommand(m_system.Dialog(), IDOK);
    platform::DeliverKillFocus(m_system.Dialog());
    EXPECT_EQ(Play("B"), 1);
    EXPECT_EQ(Play("XB"), 0);
}

TEST_F(Progress, EnablesTheParentOnEveryPath) {
    for (const char* path : {"C", "XB", "F", "~", "DBC", "DS~"}) {
        Started();
        EXPECT_FALSE(m_system.Enabled(m_window)) << path;
        Play(path);
        EXPECT_TRUE(m_system.Enabled(m_window)) << path;
        EXPECT_EQ(m_system.DialogCount(), 0) << path;
    }
    // The window system takes the dialog away in the middle of its making, in the call that noted the line.
    for (const char* when : {"text", "range", "show", "enable"}) {
        m_system.whenNoted = [&](const std::string& line) {
            if (!line.starts_with(when)) return;
            m_system.whenNoted = nullptr;
            Vanish();
        };
        EXPECT_EQ(Make(&m_parent).Start(100), 0) << when;
        EXPECT_EQ(Play("B"), 1) << when;
        EXPECT_TRUE(m_system.Enabled(m_window)) << when;
    }
    m_system.calls.clear();
    CWnd windowless;
    for (CWnd* parent : {static_cast<CWnd*>(nullptr), &windowless}) {
        Make(parent);
        Play("SC");
    }
    EXPECT_EQ(m_system.TakeCalls("enable"), "");
}

// A handler of the host calls the same object from inside the pump of each operation. Whatever it does, no window is
// used that does not stand (the scripted system looks), and what it began or ended is as it left it.
TEST_F(Progress, LetsHandlersCallFromInsideThePump) {
    const struct {
        const char* steps;
        int dialogs, canceled;  // afterwards; -1: it depends on the outer call
    } inners[] = {
        {"S", 1, 0}, {"SB", 1, 0}, {"SC", 0, 0}, {"SS", 1, 0}, {"C", 0, -1}, {"B", -1, -1}, {"X", -1, -1}, {"XB", 0, 1},
    };
    for (const char* outer : {"S", "B", "C", "XB"})
        for (const auto& inner : inners) {
            SCOPED_TRACE(std::string(inner.steps) + " inside " + outer);
            Started();
            for (int i = 0; i < 3; ++i)
                m_system.Post([&] { Play(m_system.DialogCount() > 0 ? inner.steps : ""); });
            const int result = Play(outer);
            EXPECT_EQ(result, *outer == 'X' ? 0 : *outer == 'B' ? 1 : -1);
            EXPECT_EQ(m_system.DialogCount(), inner.dialogs < 0 ? m_system.DialogCount() : inner.dialogs);
            const int canceled = *outer == 'X' ? 1 : inner.canceled;
            EXPECT_EQ(m_progress->UserCanceled(), canceled < 0 ? m_progress->UserCanceled() : canceled);
            EXPECT_EQ(m_system.Enabled(m_window), m_system.DialogCount() == 0);
            const auto count = [this](const char* call) {
                return std::ranges::count_if(m_system.calls, [&](auto& line) { return line.starts_with(call); });
            };
            EXPECT_LE(count("sleep"), count("destroy")) << "a pause for no dialog";
            Play("~");
            EXPECT_TRUE(m_system.Enabled(m_window) && m_system.DialogCount() == 0);
        }
}

TEST_F(Progress, NeedsNoStackForAFloodOfHandlers) {
    Started();
    int handled = 0;
    for (int i = 0; i < 200000; ++i)
        m_system.Post([&] { handled += Play("B"); });
    m_system.whenIdle = [&] { Play("B"); };
    EXPECT_EQ(Play("B"), 1);
    EXPECT_EQ(handled, 200000);
}

}  // namespace
