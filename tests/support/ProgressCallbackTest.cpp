#include <memory>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/Wnd.h>

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
        CProgressCallback& progress = Make(&m_parent);
        EXPECT_NE(progress.Start(total), 0);
        m_system.calls.clear();
        return progress;
    }

    ScriptedWindowSystem m_system;
    SleeplessSystem m_sleepless{m_system.calls};
    const HWND m_window = m_system.HostWindow("parent");
    CWnd m_parent;
    std::unique_ptr<CProgressCallback> m_progress;
};

TEST_F(Progress, AsksTheWindowSystemInOrder) {
    CProgressCallback& progress = Make(&m_parent);
    EXPECT_EQ(m_system.TakeCalls(), "");
    m_system.Post([] {});
    EXPECT_NE(progress.Start(200), 0);
    EXPECT_EQ(m_system.TakeCalls(),
              "make dialog1 168 on parent\ntext dialog1 title\nrange dialog1.1086 0 100\nshow dialog1.2 1\n"
              "enable parent 0\nshow dialog1 5\nidle 0\npump\nidle 0\n");
    EXPECT_EQ(progress.Callback(99), 1);
    EXPECT_EQ(m_system.TakeCalls(), "position dialog1.1086 49\nidle 0\n");
    progress.Complete();
    EXPECT_EQ(m_system.TakeCalls(), "position dialog1.1086 100\nidle 0\nsleep 100\nenable parent 1\ndestroy dialog1\n");
    progress.Complete();
    EXPECT_EQ(m_system.TakeCalls(), "");
    EXPECT_EQ(progress.UserCanceled(), 0);
}

TEST_F(Progress, ShowsWholePercents) {
    const struct {
        const char* what;
        unsigned int total;
        std::vector<unsigned int> amounts;
        std::vector<int> positions;
    } rows[] = {
        {"0 stands for 100", 0, {50, 0, 49}, {50, 50, 99}},
        {"rounds down", 3, {1, 1, 1}, {33, 66, 100}},
        {"stays at the end", 10, {10, 1, 1000}, {100, 100, 100}},
        {"products above 32 bits", 4000000000U, {42949672, 1, 1957050327, 2000000000}, {1, 1, 50, 100}},
        {"the largest total", 4294967295U, {4294967294U, 1}, {99, 100}},
        {"a sum above 32 bits", 4294967295U, {4000000000U, 4000000000U, 5}, {93, 100, 100}},
    };
    for (const auto& row : rows) {
        CProgressCallback& progress = Started(row.total);
        std::string expected;
        for (std::size_t i = 0; i < row.amounts.size(); ++i) {
            EXPECT_EQ(progress.Callback(row.amounts[i]), 1) << row.what;
            expected += std::to_string(row.positions[i]) + "\n";
        }
        std::string shown;
        for (const std::string& line : m_system.calls)
            if (line.starts_with("position")) shown += line.substr(line.rfind(' ') + 1) + "\n";
        EXPECT_EQ(shown, expected) << row.what;
    }
}

TEST_F(Progress, CountsAndPumpsWithoutADialog) {
    CProgressCallback& progress = Make(nullptr);
    m_system.Post([] {});
    EXPECT_EQ(progress.Callback(1000), 1);
    progress.Complete();
    EXPECT_EQ(m_system.TakeCalls(), "idle 0\npump\nidle 0\n");
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
    EXPECT_EQ(progress.Callback(10), 1);
    progress.Complete();
    EXPECT_EQ(progress.UserCanceled(), 1);
    EXPECT_NE(progress.Start(0), 0);
    EXPECT_EQ(progress.UserCanceled(), 0);
    EXPECT_EQ(progress.Callback(50), 1);
}

TEST_F(Progress, CancelsByKeyWithAHiddenButton) {
    CProgressCallback& progress = Make(&m_parent, 0);
    m_system.PostCommand(IDOK);
    progress.Start(100);
    EXPECT_EQ(m_system.TakeCalls("show"), "show dialog1.2 0\nshow dialog1 5\n");
    EXPECT_EQ(progress.Callback(1), 1);
    platform::DeliverKillFocus(m_system.Dialog());
    EXPECT_NE(platform::DeliverCommand(m_system.Dialog(), IDCANCEL), 0);
    EXPECT_EQ(progress.Callback(1), 0);
}

TEST_F(Progress, GoesOnWithoutAWindowWhenNoneIsMade) {
    m_system.makesDialogs = false;
    CProgressCallback& progress = Make(&m_parent);
    EXPECT_EQ(progress.Start(100), 0);
    EXPECT_EQ(progress.Callback(40), 1);
    progress.Complete();
    EXPECT_EQ(m_system.TakeCalls(), "fail 168 on parent\nidle 0\nidle 0\nidle 0\nsleep 100\n");
    EXPECT_EQ(progress.UserCanceled(), 0);
}

TEST_F(Progress, ReplacesAStandingDialogUnseen) {
    CProgressCallback& progress = Started();
    EXPECT_NE(progress.Start(50), 0);
    EXPECT_EQ(m_system.TakeCalls().find("enable parent 1\ndestroy dialog1\nmake dialog2 168 on parent\n"), 0U);
    EXPECT_EQ(m_system.DialogCount(), 1U);
    EXPECT_FALSE(m_system.Enabled(m_window));
}

// Each way by which the window can go, told by the lines that it leaves about the parent.
TEST_F(Progress, EnablesTheParentOnEveryPath) {
    const struct {
        const char* what;
        std::function<void(CProgressCallback&)> end;
    } rows[] = {
        {"completed", [](auto& progress) { progress.Complete(); }},
        {"cancelled",
         [this](auto& progress) {
             platform::DeliverCommand(m_system.Dialog(), IDCANCEL);
             progress.Callback(1);
         }},
        {"started again, no window made",
         [this](auto& progress) {
             m_system.makesDialogs = false;
             progress.Start(1);
             m_system.makesDialogs = true;
         }},
        {"destroyed by the object's end", [this](auto&) { m_progress.reset(); }},
        {"destroyed by the window system",
         [this](auto& progress) {
             platform::DeliverDestroy(m_system.Dialog());
             m_system.DestroyWindow(m_system.Dialog());
             progress.Callback(1);
             progress.Complete();
         }},
    };
    for (const auto& row : rows) {
        CProgressCallback& progress = Started();
        EXPECT_FALSE(m_system.Enabled(m_window)) << row.what;
        row.end(progress);
        EXPECT_EQ(m_system.DialogCount(), 0U) << row.what;
        EXPECT_EQ(m_system.TakeCalls("enable"), "enable parent 1\n") << row.what;
        m_progress.reset();
        EXPECT_EQ(m_system.TakeCalls("enable"), "") << row.what;
    }
}

// The window system takes the dialog away in the middle of its making, in the call that noted the line.
TEST_F(Progress, SurvivesAWindowThatGoesWhileItIsMade) {
    for (const char* when : {"text", "range", "show", "enable"}) {
        m_system.whenNoted = [&](const std::string& line) {
            if (!line.starts_with(when)) return;
            m_system.whenNoted = nullptr;
            const HWND dialog = m_system.Dialog();
            platform::DeliverDestroy(dialog);
            m_system.DestroyWindow(dialog);
        };
        EXPECT_EQ(Make(&m_parent).Start(100), 0) << when;
        EXPECT_EQ(m_progress->Callback(1), 1) << when;
        EXPECT_TRUE(m_system.Enabled(m_window)) << when;
    }
}

TEST_F(Progress, LeavesNobodyDisabledWithoutAParent) {
    CWnd windowless;
    for (CWnd* parent : {static_cast<CWnd*>(nullptr), &windowless}) {
        EXPECT_NE(Make(parent).Start(100), 0);
        m_progress->Complete();
        EXPECT_EQ(m_system.TakeCalls("enable"), "");
    }
}

// A handler of the host calls the same object from inside the pump of each operation. Whatever it does, no window is
// used that does not stand (the scripted system looks), and what it began or ended is as it left it.
TEST_F(Progress, LetsHandlersCallFromInsideThePump) {
    using Step = std::function<void(CProgressCallback&)>;
    const auto cancel = [this](CProgressCallback&) { platform::DeliverCommand(m_system.Dialog(), IDCANCEL); };
    const struct {
        const char* what;
        Step run;
    } outers[] = {
        {"Start", [](auto& progress) { EXPECT_NE(progress.Start(10), 0); }},
        {"Callback", [](auto& progress) { EXPECT_EQ(progress.Callback(1), 1); }},
        {"Complete", [](auto& progress) { progress.Complete(); }},
        {"Callback that cancels",
         [&](auto& progress) {
             cancel(progress);
             EXPECT_EQ(progress.Callback(1), 0);
         }},
    };
    const struct {
        const char* what;
        Step run;
        int dialogs, canceled;  // afterwards; -1: it depends on the outer call
    } inners[] = {
        {"Start", [](auto& progress) { EXPECT_NE(progress.Start(10), 0); }, 1, 0},
        {"Start, Callback",
         [](auto& progress) {
             progress.Start(10);
             EXPECT_EQ(progress.Callback(1), 1);
         },
         1, 0},
        {"Start, Complete",
         [](auto& progress) {
             progress.Start(10);
             progress.Complete();
         },
         0, 0},
        {"Start twice",
         [](auto& progress) {
             progress.Start(10);
             progress.Start(20);
         },
         1, 0},
        {"Complete", [](auto& progress) { progress.Complete(); }, 0, -1},
        {"Callback", [](auto& progress) { progress.Callback(1); }, -1, -1},
        {"cancel", cancel, -1, -1},
        {"cancel, Callback",
         [&](auto& progress) {
             cancel(progress);
             EXPECT_EQ(progress.Callback(1), 0);
         },
         0, 1},
    };
    for (const auto& outer : outers)
        for (const auto& inner : inners) {
            SCOPED_TRACE(std::string(inner.what) + " inside " + outer.what);
            CProgressCallback& progress = Started(10);
            for (int i = 0; i < 3; ++i)
                m_system.Post([&] { m_system.DialogCount() > 0 ? inner.run(progress) : void(); });
            outer.run(progress);
            EXPECT_EQ(m_system.MessageWaits(), 0);
            if (inner.dialogs >= 0) {
                EXPECT_EQ(m_system.DialogCount(), static_cast<std::size_t>(inner.dialogs));
            }
            if (inner.canceled >= 0) {
                EXPECT_EQ(progress.UserCanceled(), inner.canceled);
            }
            EXPECT_EQ(m_system.Enabled(m_window), m_system.DialogCount() == 0);
            EXPECT_LE(m_system.CountCalls("sleep"), m_system.CountCalls("destroy")) << "a pause for no dialog";
            m_progress.reset();
            EXPECT_EQ(m_system.DialogCount(), 0U);
            EXPECT_TRUE(m_system.Enabled(m_window));
        }
}

TEST_F(Progress, NeedsNoStackForAFloodOfHandlers) {
    CProgressCallback& progress = Started();
    int handled = 0;
    for (int i = 0; i < 200000; ++i)
        m_system.Post([&] { handled += progress.Callback(0); });
    m_system.whenIdle = [&] { progress.Callback(0); };
    EXPECT_EQ(progress.Callback(1), 1);
    EXPECT_EQ(handled, 200000);
}

}  // namespace
