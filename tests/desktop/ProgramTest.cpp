// The program's windows: what a user does there, from a list to a mail that was sent.
#include <desktop/ToolkitWindows.h>
#include <hostkit/letter/AddressList.h>
#include <hosts/desktop/MailList.h>
#include <hosts/desktop/MainWindow.h>
#include <hosts/desktop/ReadView.h>
#include <hosts/desktop/WriteWindow.h>
#include <wx/dnd.h>
#include <wx/modalhook.h>
#include <wx/msgdlg.h>
#include <wx/textctrl.h>

#include "Screen.h"
#include "tests/FileBytes.h"
#include "tests/transport/ScriptedPeer.h"

namespace {

using hostkit::Letter;
constexpr char kTaken[] = "220 hi\r\n|250 ok\r\n|250 ok\r\n|250 ok\r\n|354 go\r\n|250 taken\r\n|221 bye\r\n";
constexpr char kSilent[] = "220 hi\r\n|<silent>";

// Answers the program's boxes with that button, and remembers what they said.
class Answers : wxModalDialogHook {
public:
    explicit Answers(int button) : m_button(button) { Register(); }
    std::string said;

private:
    int Enter(wxDialog* dialog) override {
        if (auto* const box = dynamic_cast<wxMessageDialog*>(dialog)) said += box->GetMessage().utf8_string() + '\n';
        return m_button;
    }
    int m_button;
};

WriteWindow* Writing() {
    WriteWindow* found = nullptr;
    for (wxWindow* const window : wxTopLevelWindows)
        if (auto* const one = dynamic_cast<WriteWindow*>(window); one && !one->IsBeingDeleted() && one->IsShown())
            found = one;
    return found;
}

wxDialog* Progress() {
    for (wxWindow* const window : wxTopLevelWindows)
        if (auto* const dialog = dynamic_cast<wxDialog*>(window); dialog && dialog->IsShown()) return dialog;
    return nullptr;
}

Letter To(const std::string& address, const std::string& subject = "", const std::string& body = "") {
    Letter letter;
    letter.from = "me@example.jp";
    letter.to = hostkit::AddressesIn(address);
    letter.subject = subject;
    letter.body = body;
    return letter;
}

class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        setenv("XDG_STATE_HOME", folder.Native().c_str(), 1);
        CWindowSystem::Install(&m_windows);
        settings.from = "me@example.jp";
        settings.own = {"me@example.jp"};
        window = new MainWindow(settings);
        window->Show();
    }
    ~ProgramTest() override {
        const Answers discard(wxID_NO);
        window->Close(true);
        PumpUntil([] { return wxTopLevelWindows.empty(); });
        CWindowSystem::Install(nullptr);
    }
    void Send(WriteWindow& mail) {
        wxCommandEvent chosen(wxEVT_MENU, wxID_APPLY);
        mail.ProcessWindowEvent(chosen);
        wxTheApp->ProcessPendingEvents();
    }

    CTempFolder folder;
    hostkit::Settings settings;
    MainWindow* window = nullptr;

private:
    desktop::ToolkitWindows m_windows;
};

TEST_F(ProgramTest, ListsOpensAnswersAndForwards) {
    const std::filesystem::path box = folder / "box";
    std::filesystem::create_directory(box);
    for (int i = 1; i <= 3; ++i)
        WriteWholeFile(box / std::to_string(i), "From: =?utf-8?B?5bGx55Sw?= <y" + std::to_string(i) +
                                                    "@b.jp>\nTo: me@example.jp, c@d.jp\nSubject: s" +
                                                    std::to_string(i) + "\nDate: Mon, 23 Nov 2026 10:0" +
                                                    std::to_string(i) +
                                                    ":00 +0900\nContent-Type: text/plain; charset=utf-8\n\n😀 body\n");
    window->Open(box);
    PumpUntil([this] { return window->List().Percent() == 100; });
    ASSERT_EQ(window->List().GetItemCount(), 3);
    EXPECT_EQ(window->List().GetItemText(0, 1).utf8_string(), "山田");
    EXPECT_EQ(window->List().GetItemText(0, 2), "s3") << "the latest is on top";
    window->List().Filter("S2");
    ASSERT_EQ(window->List().GetItemCount(), 1);
    window->List().Select(0);
    EXPECT_EQ(window->View().Message(), ReadWholeFile(box / "2"));
    Answers read(wxID_OK);
    Letter letter = window->Reply(hostkit::Audience::Sender)->Form().Typed();
    EXPECT_EQ(letter.subject, "Re: s2");
    EXPECT_EQ(letter.to.size(), 1u);
    EXPECT_NE(letter.body.value_or("").find("> 〓 body"), std::string::npos) << letter.body.value_or("");
    EXPECT_NE(read.said.find("〓"), std::string::npos) << "what was lost is told";
    letter = window->Reply(hostkit::Audience::All)->Form().Typed();
    EXPECT_EQ(letter.cc, std::vector<std::string>{"c@d.jp"});
    letter = window->Forward()->Form().Typed();
    ASSERT_EQ(letter.attachments.size(), 1u);
    EXPECT_EQ(ReadWholeFile(letter.attachments[0]), window->View().Message());
    window->Open("MAILTO:x@y.jp,%22a,b%22%20%3Cz@y.jp%3E?subject=%E8%AD%B0&bcc=h@i.jp&body=1%0D%0A2");
    letter = Writing()->Form().Typed();
    EXPECT_EQ(letter.to, (std::vector<std::string>{"x@y.jp", "\"a, b\" <z@y.jp>"}));
    EXPECT_EQ(letter.subject, "議");
    EXPECT_EQ(letter.bcc, std::vector<std::string>{"h@i.jp"});
    EXPECT_EQ(letter.body, "1\n2");
    wxArrayString dropped;
    dropped.Add((box / "1").native());
    static_cast<wxFileDropTarget*>(Writing()->GetDropTarget())->OnDropFiles(0, 0, dropped);
    EXPECT_EQ(Writing()->Form().Typed().attachments, std::vector<std::filesystem::path>{box / "1"});
}

TEST_F(ProgramTest, WhatIsWrongIsNamedAndTheWindowStays) {
    const std::pair<Letter, const char*> rows[] = {
        {To("a@b.jp, x@@y"), "x@@y"}, {To("a@b.jp", "a😀"), "U+1F600"}, {To("a@b.jp", "", "1\n2😀"), "2"}};
    for (const auto& [letter, part] : rows) {
        Answers answers(wxID_OK);
        WriteWindow* const mail = window->Write(letter);
        EXPECT_NE(mail->Form().Problem().find(part), std::string::npos) << mail->Form().Problem();
        Send(*mail);
        EXPECT_NE(answers.said.find(part), std::string::npos) << answers.said;
        EXPECT_EQ(Writing(), mail);
    }
}

TEST_F(ProgramTest, SendsUnderADialogThatCancels) {
    ScriptedPeer slow(kSilent), server(kTaken);
    settings.server = "127.0.0.1:" + std::to_string(slow.port);
    auto* mail =
        new WriteWindow(window, settings, To("a@b.jp", "", "x"), std::make_unique<hostkit::Recovery>(folder / "r"));
    mail->Show();
    {
        const User user({{[&] { return slow.isSilent && Progress() != nullptr; },
                          [] {
                              for (wxWindow* const each : wxTopLevelWindows)
                                  EXPECT_EQ(each->IsEnabled(), each == Progress());
                              User::Press(*Progress(), WXK_ESCAPE);
                          }}});
        Send(*mail);
    }
    EXPECT_TRUE(mail->IsEnabled());
    EXPECT_EQ(Writing(), mail);
    EXPECT_EQ(mail->Form().Typed().body, "x");
    static_cast<wxTextCtrl*>(wxWindow::FindWindowByName("server", mail))
        ->SetValue("127.0.0.1:" + std::to_string(server.port));
    Send(*mail);
    EXPECT_EQ(Writing(), nullptr);
    EXPECT_NE(server.Received().find("\r\n\r\nx\r\n"), std::string::npos);
}

TEST_F(ProgramTest, NothingTypedIsLost) {
    WriteWindow* const mail = window->Write(To("a@b.jp"));
    mail->Form().AddFiles({folder / "x"});
    {
        Answers goOn(wxID_CANCEL);
        EXPECT_FALSE(mail->Close());
        EXPECT_NE(goOn.said, "");
        EXPECT_FALSE(window->Close()) << "it keeps the program";
    }
    const pid_t writer = fork();
    if (writer == 0) {
        hostkit::Recovery kept(hostkit::RecoveryFolder());
        kept.Keep(To("lost@b.jp", "", "typed"));
        kill(getpid(), SIGKILL);
    }
    waitpid(writer, nullptr, 0);
    Answers take(wxID_YES);
    window->OfferRecovered();
    EXPECT_EQ(Writing()->Form().Typed().body, "typed");
    EXPECT_TRUE(Writing()->IsModified());
    EXPECT_TRUE(hostkit::Recovery::LeftIn(hostkit::RecoveryFolder()).empty()) << "a living window's is nobody else's";
}

}  // namespace

int main(int argc, char** argv) {
    return RunOnScreen(argc, argv, [] { return RUN_ALL_TESTS(); });
}
