#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

#include <mailengine/support/platform/Dialog.h>
#include <mailengine/support/platform/FileDialog.h>
#include <mailengine/support/platform/WinApp.h>

#include "tests/support/ScriptedWindowSystem.h"

namespace {

constexpr platform::DialogControl kButton[] = {{7, "button", "", 0, 0, 1, 1, 0}};
constexpr platform::DialogTemplate kDialogs[] = {{9001, 0, 0, 0, 0, 0, 1, 1, "one", 9, "", kButton}};
constexpr platform::DialogTemplate kOthers[] = {{9001, 0, 0, 0, 0, 0, 1, 1, "two", 9, "", {}}};

// Registers the test's dialog while it lives.
struct Registered {
    explicit Registered(std::span<const platform::DialogTemplate> dialogs) : module{dialogs, {}} {
        platform::RegisterResources(module);
    }
    ~Registered() { platform::UnregisterResources(module); }
    platform::ResourceModule module;
};

// A dialog that deletes itself when it is cancelled, as hosts write them.
class SelfDeleting : public CDialog {
public:
    explicit SelfDeleting(bool& gone) : CDialog(9001), m_gone(gone) {}
    ~SelfDeleting() override { m_gone = true; }
    CWnd m_button;

protected:
    void DoDataExchange(CDataExchange* pDX) override { DDX_Control(pDX, 7, m_button); }
    void OnCancel() override {
        DestroyWindow();
        delete this;
    }

private:
    bool& m_gone;
};

TEST(Resources, TheLastRegisteredIsFound) {
    const Registered first(kDialogs);
    {
        const Registered second(kOthers);
        EXPECT_STREQ(platform::FindDialogTemplate(9001)->caption, "two");
    }
    EXPECT_STREQ(platform::FindDialogTemplate(9001)->caption, "one");
}

TEST(Windows, BelongToOneObject) {
    ScriptedWindowSystem system;
    const HWND window = system.HostWindow("host");
    CWnd first, second;
    EXPECT_EQ(first.Attach(nullptr), 0);
    EXPECT_NE(first.Attach(window), 0);
    EXPECT_EQ(first.Attach(system.HostWindow("other")), 0);
    EXPECT_EQ(second.Attach(window), 0);
    EXPECT_EQ(CWnd::FromHandle(window), &first);
    EXPECT_EQ(first.Detach(), window);
    EXPECT_EQ(CWnd::FromHandle(window), nullptr);
    EXPECT_NE(second.Attach(window), 0);
}

TEST(Windows, HandlersMayDeleteTheirDialog) {
    ScriptedWindowSystem system;
    const Registered registered(kDialogs);
    bool gone = false;
    auto* const dialog = new SelfDeleting(gone);
    EXPECT_NE(dialog->Create(), 0);
    EXPECT_EQ(dialog->Create(), 0);
    EXPECT_NE(dialog->m_button.m_hWnd, nullptr);
    const HWND window = dialog->m_hWnd;
    EXPECT_NE(platform::DeliverCommand(window, IDCANCEL), 0);
    EXPECT_TRUE(gone);
    EXPECT_EQ(platform::DeliverCommand(window, IDCANCEL), 0);
    EXPECT_EQ(system.TakeCalls("destroy"), "destroy dialog1\n");
}

TEST(Windows, GoWithTheirParent) {
    ScriptedWindowSystem system;
    const Registered registered(kDialogs);
    CWnd parent;
    parent.Attach(system.HostWindow("host"));
    CDialog dialog(9001, &parent);
    CWnd button;
    EXPECT_EQ(button.SubclassDlgItem(7, &dialog), 0);
    EXPECT_NE(dialog.Create(), 0);
    EXPECT_EQ(button.SubclassDlgItem(8, &dialog), 0);
    EXPECT_NE(button.SubclassDlgItem(7, &dialog), 0);
    EXPECT_EQ(dialog.GetParent(), &parent);
    platform::DeliverDestroy(parent.m_hWnd);
    for (const CWnd* wnd : {&parent, static_cast<CWnd*>(&dialog), &button})
        EXPECT_EQ(wnd->m_hWnd, nullptr);
    EXPECT_EQ(dialog.DestroyWindow(), 0);
}

TEST(Windows, AskTheUserThroughTheSystem) {
    ScriptedWindowSystem system;
    CWnd owner;
    owner.Attach(system.HostWindow("host"));
    CFileDialog dialog(0, "eml", "mail.eml", nullptr, &owner);
    system.paths = {"C:\\a.eml"};
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_EQ(dialog.GetPathName(), "C:\\a.eml");
    system.boxAnswer = 6;
    EXPECT_EQ(owner.MessageBoxA("text", "caption", MB_OK | MB_ICONEXCLAMATION), 6);
    EXPECT_EQ(CWnd().MessageBoxA("text"), 6);
    EXPECT_EQ(system.TakeCalls(),
              "files host 0 mail.eml\nfiles host 0 mail.eml\nbox host 48 caption|text\nbox none 0 |text\n");
}

TEST(Windows, StandUnseenWithoutAnInstalledSystem) {
    const Registered registered(kDialogs);
    CDialog dialog(9001), other(9001), unknown(9002);
    EXPECT_NE(dialog.Create(), 0);
    EXPECT_NE(other.Create(), 0);
    EXPECT_EQ(unknown.Create(), 0);
    EXPECT_NE(dialog.m_hWnd, other.m_hWnd);
    EXPECT_EQ(CWnd::FromHandle(other.m_hWnd), &other);
    EXPECT_EQ(platform::PeekMessageA(), 0);
    EXPECT_EQ(dialog.MessageBoxA("text"), IDOK);
    EXPECT_EQ(CFileDialog(1).DoModal(), IDCANCEL);
    EXPECT_NE(dialog.DestroyWindow(), 0);
    EXPECT_EQ(dialog.DestroyWindow(), 0);
}

class SocketWait : public testing::Test {
protected:
    SocketWait() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, m_pair.data()), 0); }
    ~SocketWait() override {
        for (const int descriptor : m_pair)
            close(descriptor);
    }
    int Wait(int events, int timeout) { return CWindowSystem::Get().WaitForSocket(m_pair[0], events, timeout); }
    void FeedPeer() { EXPECT_EQ(send(m_pair[1], "x", 1, 0), 1); }

    std::array<int, 2> m_pair{};
};

constexpr int kBoth = CWindowSystem::kReadable | CWindowSystem::kWritable;

TEST_F(SocketWait, ReportsWhatIsReady) {
    for (const bool scripted : {false, true}) {
        std::unique_ptr<ScriptedWindowSystem> system;
        if (scripted) system = std::make_unique<ScriptedWindowSystem>();
        EXPECT_EQ(Wait(kBoth, -1), CWindowSystem::kWritable);
        EXPECT_EQ(Wait(CWindowSystem::kReadable, 0), 0);
        EXPECT_EQ(Wait(CWindowSystem::kReadable, 1), 0);
        FeedPeer();
        EXPECT_EQ(Wait(kBoth, -1), kBoth);
        char byte = 0;
        EXPECT_EQ(recv(m_pair[0], &byte, 1, 0), 1);
        for (const int descriptor : {-1, 1 << 20}) {
            errno = 0;
            EXPECT_EQ(CWindowSystem::Get().WaitForSocket(descriptor, kBoth, -1), -1);
            EXPECT_EQ(errno, EBADF);
        }
    }
    shutdown(m_pair[1], SHUT_RDWR);
    EXPECT_EQ(Wait(CWindowSystem::kReadable, -1), CWindowSystem::kReadable);
    EXPECT_EQ(Wait(kBoth, -1), kBoth);
}

TEST_F(SocketWait, KeepsTheMessagesMoving) {
    ScriptedWindowSystem system;
    int handled = 0;
    for (int i = 0; i < 10; ++i)
        system.Post([&] {
            if (++handled == 7) FeedPeer();
        });
    EXPECT_EQ(Wait(CWindowSystem::kReadable, -1), CWindowSystem::kReadable);
    EXPECT_EQ(handled, 7);
    EXPECT_EQ(Wait(CWindowSystem::kReadable, -1), CWindowSystem::kReadable);
    EXPECT_EQ(handled, 7) << "a socket that is ready is not kept waiting";
}

}  // namespace
