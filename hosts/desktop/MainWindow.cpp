#include "MainWindow.h"

#include <desktop/Accessible.h>
#include <hostkit/letter/Draft.h>
#include <hostkit/letter/MailtoUrl.h>
#include <hostkit/letter/answer/Forward.h>
#include <wx/dirdlg.h>
#include <wx/dnd.h>
#include <wx/filedlg.h>
#include <wx/menu.h>
#include <wx/persist/toplevel.h>
#include <wx/sizer.h>
#include <wx/splitter.h>
#include <wx/srchctrl.h>

#include "MailList.h"
#include "ReadView.h"
#include "Text.h"
#include "WriteWindow.h"

using hostkit::Letter;
using hostkit::Words;

namespace {

constexpr char kScheme[] = "mailto:";
constexpr char kDraftExtension[] = ".maildraft";

class OpenDrop : public wxFileDropTarget {
public:
    explicit OpenDrop(MainWindow& window) : m_window(window) {}
    bool OnDropFiles(wxCoord, wxCoord, const wxArrayString& names) override {
        for (const wxString& name : names)
            m_window.Open(Utf8(name));
        return true;
    }

private:
    MainWindow& m_window;
};

// Runs the action; a failure of the kit is said in a box.
template <class Action>
void Guard(wxWindow* owner, Action action) {
    try {
        action();
    } catch (const hostkit::Failure& failure) {
        Complain(owner, failure.what());
    }
}

}  // namespace

MainWindow::MainWindow(hostkit::Settings settings)
    : wxFrame(nullptr, wxID_ANY, Shown(Words("Mail"))), m_settings(std::move(settings)) {
    MakeContent();
    MakeMenu();
    CreateStatusBar();
    SetClientSize(FromDIP(wxSize(900, 680)));
    SetName("main");
    wxPersistentRegisterAndRestore(this);
    SetDropTarget(new OpenDrop(*this));
    Bind(wxEVT_CLOSE_WINDOW, &MainWindow::OnClose, this);
}

void MainWindow::MakeMenu() {
    const auto add = [this](wxMenu& menu, const std::string& text, auto action) {
        const int id = menu.Append(wxID_ANY, Shown(text))->GetId();
        Bind(
            wxEVT_MENU, [this, action](wxCommandEvent&) { Guard(this, action); }, id);
    };
    auto* const file = new wxMenu;
    add(*file, Words("Open &folder…\tCtrl+Shift+O"), [this] { OpenFolder(); });
    add(*file, Words("&Open message or draft…\tCtrl+O"), [this] { OpenFile(); });
    file->AppendSeparator();
    add(*file, Words("&Quit\tCtrl+Q"), [this] { Close(); });
    auto* const mail = new wxMenu;
    add(*mail, Words("&New mail\tCtrl+N"), [this] { Write({}); });
    mail->AppendSeparator();
    add(*mail, Words("&Reply\tCtrl+R"), [this] { Reply(hostkit::Audience::Sender); });
    add(*mail, Words("Reply to &all\tCtrl+Shift+R"), [this] { Reply(hostkit::Audience::All); });
    add(*mail, Words("&Forward as attachment\tCtrl+L"), [this] { Forward(); });
    auto* const bar = new wxMenuBar;
    bar->Append(file, Shown(Words("&File")));
    bar->Append(mail, Shown(Words("&Mail")));
    SetMenuBar(bar);
}

void MainWindow::MakeContent() {
    auto* const search = new wxSearchCtrl(this, wxID_ANY);
    search->SetDescriptiveText(Shown(Words("Filter by sender or subject")));
    desktop::SetAccessibleName(*search, Words("Filter by sender or subject"));
    auto* const splitter = new wxSplitterWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxSP_LIVE_UPDATE);
    m_list = new MailList(splitter);
    desktop::SetAccessibleName(*m_list, Words("Messages"));
    m_view = new ReadView(splitter);
    splitter->SetMinimumPaneSize(FromDIP(80));
    splitter->SplitHorizontally(m_list, m_view, FromDIP(240));
    auto* const all = new wxBoxSizer(wxVERTICAL);
    all->Add(search, wxSizerFlags().Expand().Border(wxALL, FromDIP(4)));
    all->Add(splitter, wxSizerFlags(1).Expand());
    SetSizer(all);
    search->Bind(wxEVT_TEXT, [this](wxCommandEvent& event) { m_list->Filter(event.GetString()); });
    m_list->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { ShowChosen(); });
    m_list->SetFocus();
    m_list->whenRead = [this] { ShowStatus(); };
}

void MainWindow::Open(const std::string& argument) {
    Guard(this, [&] {
        const std::filesystem::path path = argument;
        std::error_code error;
        if (wxString::FromUTF8(argument).Lower().StartsWith(kScheme)) {
            Write(hostkit::LetterOfMailto(argument));
        } else if (path.extension() == kDraftExtension && std::filesystem::is_regular_file(path, error)) {
            OpenDraft(path);
        } else {
            m_list->Open(path);
            m_view->Clear();
            SetTitle(Shown(path.filename().native() + " - " + Words("Mail")));
            if (m_list->Count() == 1) m_list->Select(0);
            ShowStatus();
        }
    });
}

void MainWindow::OfferRecovered() {
    for (std::unique_ptr<hostkit::Recovery>& left : hostkit::Recovery::LeftIn(hostkit::RecoveryFolder())) {
        Guard(this, [&] {
            left->Leave();  // until it is in a window
            const Letter letter = left->Kept();
            const std::string subject = letter.subject.value_or("");
            if (Ask(this, Words("A mail that was being written was not saved: {1}", subject),
                    {Words("Go on writing"), Words("Discard")}) == 0) {
                auto* const window = new WriteWindow(this, m_settings, letter, std::move(left));
                window->SetModified();
                window->Show();
            } else {
                left->Leave(false);
            }
        });
    }
}

Letter MainWindow::Beginning() const {
    Letter letter;
    letter.from = m_settings.from;
    letter.replyTo = m_settings.replyTo;
    letter.signature = m_settings.signature;
    return letter;
}

WriteWindow* MainWindow::Write(Letter letter) {
    const Letter beginning = Beginning();
    if (!letter.from) letter.from = beginning.from;
    if (!letter.replyTo) letter.replyTo = beginning.replyTo;
    if (!letter.signature) letter.signature = beginning.signature;
    auto* const window =
        new WriteWindow(this, m_settings, letter, std::make_unique<hostkit::Recovery>(hostkit::RecoveryFolder()));
    window->Show();
    return window;
}

WriteWindow* MainWindow::Reply(hostkit::Audience audience) {
    if (m_view->Message().empty()) return nullptr;
    hostkit::PreparedAnswer answer = hostkit::AnswerOf(
        m_view->Message(), Beginning(), {.audience = audience, .own = m_settings.own, .name = m_view->Name()});
    WriteWindow* const window = Write(std::move(answer.letter));
    std::string warnings;
    for (const std::string& warning : answer.warnings)
        warnings += warning + '\n';
    if (!warnings.empty()) Inform(window, warnings);
    return window;
}

WriteWindow* MainWindow::Forward() {
    if (m_view->Message().empty()) return nullptr;
    auto files = std::make_unique<hostkit::WorkFolder>();
    Letter letter = hostkit::ForwardOf(m_view->Message(), files->Path(), m_view->Name());
    const Letter beginning = Beginning();
    letter.from = beginning.from;
    letter.replyTo = beginning.replyTo;
    letter.signature = beginning.signature;
    auto* const window = new WriteWindow(
        this, m_settings, letter, std::make_unique<hostkit::Recovery>(hostkit::RecoveryFolder()), std::move(files));
    window->Show();
    return window;
}

void MainWindow::OpenFolder() {
    wxDirDialog dialog(this, Shown(Words("Open folder")), wxEmptyString, wxDD_DIR_MUST_EXIST);
    if (dialog.ShowModal() == wxID_OK) Open(Utf8(dialog.GetPath()));
}

void MainWindow::OpenFile() {
    wxFileDialog dialog(this, Shown(Words("Open message or draft")), wxEmptyString, wxEmptyString,
                        wxFileSelectorDefaultWildcardStr, wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (dialog.ShowModal() == wxID_OK) Open(Utf8(dialog.GetPath()));
}

void MainWindow::OpenDraft(const std::filesystem::path& file) {
    Write(hostkit::OpenDraft(file));
}

void MainWindow::ShowChosen() {
    Guard(this, [this] {
        const hostkit::MessageList::Entry* const entry = m_list->Chosen();
        if (entry != nullptr) m_view->ShowMessage(m_list->ChosenMessage(), entry->file.filename().native());
    });
}

void MainWindow::ShowStatus() {
    const std::string count = hostkit::CountedWords(m_list->Count(), "{1} message", "{1} messages");
    const int percent = m_list->Percent();
    SetStatusText(Shown(percent < 100 ? Words("{1}, {2} % read", count, percent) : count));
}

// A write window that is not to be closed keeps the program.
void MainWindow::OnClose(wxCloseEvent& event) {
    const wxWindowList children = GetChildren();
    for (wxWindow* const child : children)
        if (auto* const window = dynamic_cast<WriteWindow*>(child); window != nullptr)
            if (!window->Close(!event.CanVeto()) && event.CanVeto()) return event.Veto();
    Destroy();
}
