#include <mailengine/support/platform/windows/Dialog.h>
#include <mailengine/support/platform/windows/FileDialog.h>

#include "tests/support/ScriptedWindowSystem.h"

namespace {

constexpr platform::DialogControl kButton[] = {{7, "button", "", 0, 0, 1, 1, 0}};
constexpr platform::DialogTemplate kDialogs[] = {{9001, 0, 0, 0, 0, 0, 1, 1, "", 9, "", kButton}};

class Windows : public testing::Test {
protected:
    Windows() { platform::RegisterResources(m_module); }
    ~Windows() override { platform::UnregisterResources(m_module); }
    platform::ResourceModule m_module{kDialogs, {}};
};

// A dialog that deletes itself when it is cancelled, as hosts write them.
class SelfDeleting : public CDialog {
public:
    SelfDeleting() : CDialog(9001) {}
    CWnd m_button;

protected:
    void DoDataExchange(CDataExchange* pDX) override { DDX_Control(pDX, 7, m_button); }
    void OnCancel() override {
        DestroyWindow();
        delete this;
    }
};

TEST_F(Windows, HandlersMayDeleteTheirDialog) {
    ScriptedWindowSystem system;
    auto* const dialog = new SelfDeleting;
    EXPECT_NE(dialog->Create(), 0);
    EXPECT_EQ(dialog->Create(), 0);
    EXPECT_EQ(CWnd::FromHandle(dialog->m_button.m_hWnd), &dialog->m_button);
    const HWND window = dialog->m_hWnd;
    EXPECT_NE(platform::DeliverCommand(window, IDCANCEL), 0);
    EXPECT_EQ(platform::DeliverCommand(window, IDCANCEL), 0);
    EXPECT_EQ(system.TakeCalls("destroy"), "destroy dialog1\n");
}

TEST_F(Windows, GoWithTheirParent) {
    ScriptedWindowSystem system;
    CWnd parent, button;
    EXPECT_NE(parent.Attach(system.HostWindow("host")), 0);
    EXPECT_EQ(button.Attach(parent.m_hWnd), 0) << "one window, one object";
    CDialog dialog(9001, &parent);
    EXPECT_NE(dialog.Create(), 0);
    EXPECT_EQ(button.SubclassDlgItem(8, &dialog), 0);
    EXPECT_NE(button.SubclassDlgItem(7, &dialog), 0);
    EXPECT_EQ(dialog.GetParent(), &parent);
    platform::DeliverDestroy(parent.m_hWnd);
    for (const CWnd* wnd : {&parent, static_cast<CWnd*>(&dialog), &button})
        EXPECT_EQ(wnd->m_hWnd, nullptr);
}

TEST_F(Windows, StandUnseenWithoutAnInstalledSystem) {
    CDialog dialog(9001), other(9001), unknown(9002);
    EXPECT_TRUE(dialog.Create() && other.Create() && !unknown.Create());
    EXPECT_EQ(CWnd::FromHandle(other.m_hWnd), &other);
    EXPECT_EQ(dialog.MessageBoxA("text"), IDOK);
    EXPECT_EQ(CFileDialog(1).DoModal(), IDCANCEL);
    EXPECT_TRUE(dialog.DestroyWindow() && !dialog.DestroyWindow());
}

}  // namespace
