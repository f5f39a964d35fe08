#include <desktop/ProgressBar.h>
#include <desktop/TemplateDialog.h>
#include <desktop/ToolkitWindows.h>
#include <sys/socket.h>
#include <wx/button.h>
#include <wx/filedlg.h>
#include <wx/modalhook.h>
#include <wx/msgdlg.h>
#include <wx/textctrl.h>

#include <mailengine/mailengine.h>
#include <mailengine/support/Resources.h>

#include "Screen.h"
#include "tests/FileBytes.h"
#include "tests/transport/ScriptedPeer.h"

namespace {

using desktop::TemplateDialog;

// The window of that kind made last of those that stand, null if none does.
template <class Kind>
Kind* Standing() {
    for (wxWindow* const window : wxTopLevelWindows)
        if (auto* const found = dynamic_cast<Kind*>(window); found && found->IsShown()) return found;
    return nullptr;
}

desktop::ProgressBar* Bar() {
    auto* const dialog = Standing<TemplateDialog>();
    return dialog ? static_cast<desktop::ProgressBar*>(dialog->Control(resources::kProgressBar)) : nullptr;
}

bool UnderWay() {
    return Bar() != nullptr && Bar()->Percent() >= 5;
}

void PressCancel() {
    User::Click(*Standing<TemplateDialog>()->Control(IDCANCEL));
}

void PressEscape() {
    User::Press(*Standing<TemplateDialog>(), WXK_ESCAPE);
}

// The dialog of that kind, one of the toolkit's own, that is there for the user; null if none is.
GtkWidget* Toolkits(GType kind) {
    GtkWidget* found = nullptr;
    GList* const all = gtk_window_list_toplevels();
    for (const GList* one = all; one != nullptr; one = one->next)
        if (g_type_is_a(G_OBJECT_TYPE(one->data), kind) && gtk_widget_get_mapped(GTK_WIDGET(one->data)))
            found = GTK_WIDGET(one->data);
    g_list_free(all);
    return found;
}

// The name in the file dialog that waits for an answer.
std::string ProposedName() {
    GtkWidget* const dialog = Toolkits(GTK_TYPE_FILE_CHOOSER_DIALOG);
    if (dialog == nullptr || Toolkits(GTK_TYPE_MESSAGE_DIALOG) != nullptr) return {};
    char* const name = gtk_file_chooser_get_current_name(GTK_FILE_CHOOSER(dialog));
    const std::string text(name == nullptr ? "" : name);
    g_free(name);
    return text;
}

// The two ends of the bar on the screen.
std::string End(bool right) {
    const wxRect bar = Bar()->GetScreenRect();
    return Pixels({right ? bar.GetRight() - 8 : bar.x + 4, bar.y + 4, 4, 4});
}

// What stands on the screen while the library pauses in front of the end.
class Pause : public CSystem {
public:
    Pause() : m_before(Install(this)) {}
    ~Pause() override { Install(m_before); }
    void Sleep(unsigned int) override { rightEnd = End(true); }
    std::string rightEnd;

private:
    CSystem* m_before;
};

class WindowsTest : public testing::Test {
protected:
    WindowsTest() {
        CWindowSystem::Install(&m_windows);
        parent.Attach(desktop::ToolkitWindows::HandleOf(frame));
        frame->Show();
        field->SetFocus();
        PumpUntil([this] { return field->IsShownOnScreen() && wxWindow::FindFocus() == field; });
        document.SetFromAddress(CAddress("", "", "a@example.jp"));
        document.AddToAddress(CAddress("", "", "b@example.jp"));
    }
    ~WindowsTest() override {
        parent.Detach();
        if (frame != nullptr) frame->Destroy();
        PumpUntil([] { return wxTopLevelWindows.empty(); });
        CWindowSystem::Install(nullptr);
    }
    // The display tells in its own time who has the keyboard.
    void ExpectParentBack() const {
        EXPECT_TRUE(frame->IsEnabled() && Standing<TemplateDialog>() == nullptr);
        PumpUntil([this] { return wxWindow::FindFocus() == field; });
    }

    CTempFolder folder;
    CMailDoc document;
    wxWeakRef<wxFrame> frame = new wxFrame(nullptr, wxID_ANY, "host");
    wxTextCtrl* field = new wxTextCtrl(frame, wxID_ANY);
    CWnd parent;

private:
    desktop::ToolkitWindows m_windows;
};

TEST_F(WindowsTest, ProgressRunsToAnEndThatIsSeen) {
    Pause pause;
    CProgressCallback progress("\x95\xDB\x91\xB6\x92\x86", 1, &parent);
    ASSERT_TRUE(progress.Start(100));
    auto* const dialog = Standing<TemplateDialog>();
    EXPECT_FALSE(frame->IsEnabled());
    EXPECT_EQ(dialog->GetTitle().utf8_string(), "保存中");
    EXPECT_EQ(dialog->Control(IDCANCEL)->GetLabel().utf8_string(), "ｷｬﾝｾﾙ");
    EXPECT_FALSE(dialog->HasFlag(wxCLOSE_BOX));
    PumpUntil([] { return End(true) == End(false); });
    const std::string empty = End(true);
    EXPECT_TRUE(progress.Callback(50));
    EXPECT_NE(End(false), empty);
    EXPECT_EQ(End(true), empty);
    ASSERT_TRUE(progress.Start(100)) << "a second one takes the place of the first";
    PumpUntil([&] { return End(false) == empty; });
    progress.Complete();
    EXPECT_NE(pause.rightEnd, empty);
    ExpectParentBack();
}

TEST_F(WindowsTest, EveryWayOfCancelling) {
    const std::pair<int, std::function<void()>> ways[] = {
        {1, PressCancel}, {1, PressEscape}, {0, PressEscape}, {1, [] { Standing<TemplateDialog>()->Close(); }}};
    for (const auto& [showCancel, cancel] : ways) {
        CProgressCallback progress("x", showCancel, &parent);
        ASSERT_TRUE(progress.Start(1000));
        EXPECT_EQ(Standing<TemplateDialog>()->Control(IDCANCEL)->IsShown(), showCancel == 1);
        PumpUntil([] { return Bar()->IsShownOnScreen() && End(true) == End(false); });
        cancel();
        PumpUntil([&] { return progress.Callback(0) == 0; });
        EXPECT_TRUE(progress.UserCanceled());
        ExpectParentBack();
    }
}

TEST_F(WindowsTest, NoDialogIsNoHarm) {
    CProgressCallback progress("x", 1, &parent);
    wxAppConsole* const app = wxApp::GetInstance();
    wxApp::SetInstance(nullptr);
    EXPECT_FALSE(progress.Start(100));
    EXPECT_EQ(parent.MessageBoxA("x", "x", MB_OK), IDOK);
    wxApp::SetInstance(app);
    EXPECT_TRUE(progress.Callback(50));
    EXPECT_TRUE(frame->IsEnabled());
    progress.Complete();
    ASSERT_TRUE(progress.Start(100));
    parent.Detach();
    frame->Destroy();  // the host's window goes, and the dialog with it
    PumpUntil([&] { return progress.Callback(1) == 1 && frame == nullptr; });
    EXPECT_EQ(Standing<TemplateDialog>(), nullptr);
    progress.Complete();
}

TEST_F(WindowsTest, IdleWorkWithoutAnEndHoldsNothingUp) {
    frame->Bind(wxEVT_IDLE, [](wxIdleEvent& event) { event.RequestMore(); });
    CProgressCallback progress("x", 1, &parent);
    progress.Start(1000);
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(progress.Callback(1));
}

TEST_F(WindowsTest, MessageBoxesAndFailuresThatRaiseThem) {
    struct : wxModalDialogHook {
        int Enter(wxDialog* dialog) override {
            const auto* const box = dynamic_cast<wxMessageDialog*>(dialog);
            if (box != nullptr) shown = box->GetTitle() + ": " + box->GetMessage();
            if (box != nullptr && (box->GetMessageDialogStyle() & wxICON_EXCLAMATION) != 0) shown += " !";
            return box == nullptr ? wxID_NONE : wxID_OK;
        }
        wxString shown;
    } hook;
    hook.Register();
    struct : CFileDialog {
        using CFileDialog::CFileDialog;
        int DoModal() override { return m_strPathName = "\\no\\folder", IDOK; }
    } dialog(0);
    EXPECT_EQ(document.SaveAs(&parent, &dialog), 0);
    EXPECT_EQ(hook.shown.utf8_string(), "保存: ファイル作成に失敗しました。 !");
}

TEST_F(WindowsTest, SaveAsWithTheToolkitsDialog) {
    const auto chooses = [] { return !ProposedName().empty(); };
    const auto isAsked = [] { return Toolkits(GTK_TYPE_MESSAGE_DIALOG) != nullptr; };
    const auto press = [](int key) { return [key] { wxUIActionSimulator().Char(key); }; };
    const std::string target = folder / "m.eml";
    const User::Step accept{chooses, press(WXK_RETURN)}, giveUp{chooses, press(WXK_ESCAPE)},
        agree{isAsked, press(WXK_RETURN)}, refuse{isAsked, press(WXK_ESCAPE)},
        again{[] { return ProposedName() == "m.eml"; }, press(WXK_RETURN)};
    // With a filter the dialog knows the extension and asks at once, without one when it is there again.
    const char* const filter = "Mail (*.eml)|*.eml||";
    const struct {
        const char* filter;
        std::vector<User::Step> steps;
        bool exists, saved;
    } rows[] = {{filter, {giveUp}, false, false},
                {filter, {accept}, false, true},
                {filter, {accept, refuse, giveUp}, true, false},
                {filter, {accept, agree}, true, true},
                {nullptr, {accept}, false, true},
                {nullptr, {accept, again, refuse, giveUp}, true, false},
                {nullptr, {accept, again, agree}, true, true}};
    for (const auto& row : rows) {
        WriteWholeFile(target, "old");
        if (!row.exists) unlink(target.c_str());
        const User user(row.steps);
        CFileDialog dialog(0, "eml", folder.Path("m"), row.filter, &parent);
        EXPECT_EQ(document.SaveAs(&parent, &dialog), 1);
        EXPECT_EQ(ReadWholeFile(target).starts_with("From: a@example.jp"), row.saved);
        EXPECT_EQ(ReadWholeFile(target) == "old", row.exists && !row.saved);
    }
}

TEST_F(WindowsTest, CancelInTheMiddleOfSaveAndSend) {
    WriteWholeFile(folder / "large", "");
    document.SetFiles({{folder.Path("large"), "large"}});
    for (const auto cancel : {PressCancel, PressEscape}) {
        struct Answers : CFileDialog {
            Answers(const CString& path) : CFileDialog(0) { m_strPathName = path; }
            int DoModal() override { return IDOK; }
        } dialog(folder.Path("m.eml"));
        {
            // Lasts until the press comes through the display.
            std::filesystem::resize_file(folder / "large", 60'000'000);
            User user({{UnderWay, cancel}});
            document.SaveAs(&parent, &dialog);
        }
        EXPECT_FALSE(std::filesystem::exists(folder / "m.eml"));
        ExpectParentBack();
        std::filesystem::resize_file(folder / "large", 4'000'000);  // of which the system takes enough for the bar
        ScriptedPeer peer("220 hi\r\n|250 ok\r\n|250 ok\r\n|250 ok\r\n|354 go\r\n|<stall>");
        document.SetSendServer("127.0.0.1", peer.port);
        CProgressCallback progress("x", 1, &parent);
        progress.Start(document.GetMailSize());
        CString error;
        User user({{UnderWay, cancel}});
        EXPECT_FALSE(CMailSendRecv::SendWhole(document, progress, error));
        progress.Complete();
        EXPECT_TRUE(progress.UserCanceled());
        ExpectParentBack();
    }
}

TEST_F(WindowsTest, AWaitForASocketDispatchesAndEnds) {
    CWindowSystem& windows = CWindowSystem::Get();
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    EXPECT_EQ(windows.WaitForSocket(pair[0], CWindowSystem::kReadable | CWindowSystem::kWritable, -1),
              CWindowSystem::kWritable);
    EXPECT_EQ(windows.WaitForSocket(pair[0], CWindowSystem::kReadable, 0), 0);
    EXPECT_EQ(windows.WaitForSocket(pair[0], CWindowSystem::kReadable, 30), 0);
    int inner = -2;
    User user({{[] { return true; },
                [&] {
                    inner = windows.WaitForSocket(pair[1], CWindowSystem::kReadable, 30);
                    EXPECT_EQ(write(pair[1], "", 1), 1);
                }}});
    EXPECT_EQ(windows.WaitForSocket(pair[0], CWindowSystem::kReadable, -1), CWindowSystem::kReadable);
    EXPECT_EQ(inner, 0);
    close(pair[1]);
    EXPECT_EQ(windows.WaitForSocket(pair[0], CWindowSystem::kWritable, -1), CWindowSystem::kWritable);
    close(pair[0]);
    EXPECT_EQ(windows.WaitForSocket(pair[0], CWindowSystem::kReadable, -1), -1);
}

// What a dialog's button looks like on the screen of another process, which knows the fonts of that configuration.
std::string Drawn(const std::string& fonts) {
    const std::string command = "FONTCONFIG_FILE='" + fonts + "' /proc/" + std::to_string(getpid()) + "/exe --draw";
    FILE* const output = popen(command.c_str(), "r");
    char text[32] = "";
    EXPECT_NE(fgets(text, sizeof text, output), nullptr);
    EXPECT_EQ(pclose(output), 0);
    return text;
}

TEST_F(WindowsTest, JapaneseIsDrawnWithAJapaneseFont) {
    WriteWholeFile(folder / "none.conf", "<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir></fontconfig>");
    const std::string system = Drawn("/etc/fonts/fonts.conf");
    EXPECT_EQ(system, Drawn("/etc/fonts/fonts.conf"));
    EXPECT_NE(system, Drawn(folder / "none.conf"));
}

void DrawButton() {
    desktop::ToolkitWindows windows;
    CWindowSystem::Install(&windows);
    CProgressCallback progress("x", 1, nullptr);
    progress.Start(100);
    const wxWindow* const button = Standing<TemplateDialog>()->Control(IDCANCEL);
    // A button fades in.
    std::string picture;
    int same = 0;
    PumpUntil([&] {
        const std::string before = std::exchange(picture, Pixels(button->GetScreenRect()));
        same = picture == before && picture != std::string(picture.size(), picture[0]) ? same + 1 : 0;
        return same == 10;
    });
    printf("%zu\n", std::hash<std::string>()(picture));
}

}  // namespace

int main(int argc, char** argv) {
    const bool draws = argc == 2 && std::string(argv[1]) == "--draw";
    return RunOnScreen(argc, argv, [draws] { return draws ? (DrawButton(), 0) : RUN_ALL_TESTS(); });
}
