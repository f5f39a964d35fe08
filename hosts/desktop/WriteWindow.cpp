#include "WriteWindow.h"

#include <desktop/Accessible.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/letter/Draft.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/OpenedMail.h>
#include <hostkit/letter/SaveLetter.h>
#include <hostkit/letter/SendLetter.h>
#include <wx/button.h>
#include <wx/dnd.h>
#include <wx/filedlg.h>
#include <wx/menu.h>
#include <wx/notebook.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "Text.h"
#include "Work.h"

using hostkit::Letter;
using hostkit::Outcome;
using hostkit::Words;

namespace {

constexpr int kKeepPause = 10'000;  // milliseconds of typing that a power cut may cost
constexpr int kGap = 6;

class FileDrop : public wxFileDropTarget {
public:
    explicit FileDrop(LetterForm& form) : m_form(form) {}
    bool OnDropFiles(wxCoord, wxCoord, const wxArrayString& names) override {
        std::vector<std::filesystem::path> files;
        for (const wxString& name : names)
            files.emplace_back(Utf8(name));
        m_form.AddFiles(files);
        return true;
    }

private:
    LetterForm& m_form;
};

// The mail as its recipients will see it, without its attachments, read back from what would be sent.
std::string PreviewOf(Letter letter) {
    const std::vector<std::filesystem::path> files = std::exchange(letter.attachments, {});
    CMailDoc doc;
    letter.Fill(doc);
    const hostkit::WorkFolder folder;
    const std::filesystem::path file = folder.Path() / "preview.eml";
    const Outcome saved = hostkit::SaveLetter(doc, file, [](int) { return true; });
    if (!saved) return saved.text;
    const hostkit::OpenedMail mail = hostkit::OpenMail(hostkit::ReadMessage(file));
    std::string text = hostkit::HeaderShown(mail.summary) + '\n' + hostkit::BodyShown(mail.body);
    for (const std::filesystem::path& attached : files)
        text += "\n" + Words("Attachment: {1}", hostkit::LineShown(attached.filename().native()));
    return text;
}

}  // namespace

WriteWindow::WriteWindow(wxWindow* parent, const hostkit::Settings& settings, const Letter& letter,
                         std::unique_ptr<hostkit::Recovery> recovery, std::unique_ptr<hostkit::WorkFolder> files)
    : wxFrame(parent, wxID_ANY, Shown(Words("New mail")), wxDefaultPosition, wxDefaultSize,
              wxDEFAULT_FRAME_STYLE & ~wxFRAME_FLOAT_ON_PARENT),
      m_recovery(std::move(recovery)),
      m_files(std::move(files)),
      m_keep(this) {
    MakeMenu();
    MakeContent(settings);
    SetClientSize(FromDIP(wxSize(760, 720)));
    m_form->Fill(letter);
    m_kept = m_form->Typed();
    SetDropTarget(new FileDrop(*m_form));
    Bind(wxEVT_CLOSE_WINDOW, &WriteWindow::OnClose, this);
    // A field of many lines would take it for a line end, whatever the menu says.
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (event.GetKeyCode() == WXK_RETURN && event.GetModifiers() == wxMOD_CONTROL)
            Send();
        else
            event.Skip();
    });
    Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Keep(); });
    m_keep.Start(kKeepPause);
}

void WriteWindow::MakeMenu() {
    const auto add = [this](wxMenu& menu, const std::string& text, int id, auto action) {
        menu.Append(id, Shown(text));
        Bind(
            wxEVT_MENU, [action](wxCommandEvent&) { action(); }, id);
    };
    auto* const menu = new wxMenu;
    add(*menu, Words("&Send\tCtrl+Return"), wxID_APPLY, [this] { Send(); });
    menu->AppendSeparator();
    add(*menu, Words("Save &draft\tCtrl+S"), wxID_SAVE, [this] { SaveDraft(); });
    add(*menu, Words("Save as a &message…\tCtrl+Shift+S"), wxID_SAVEAS, [this] { SaveMessage(); });
    menu->AppendSeparator();
    add(*menu, Words("&Close\tCtrl+W"), wxID_CLOSE, [this] { Close(); });
    auto* const bar = new wxMenuBar;
    bar->Append(menu, Shown(Words("&Mail")));
    SetMenuBar(bar);
}

void WriteWindow::MakeContent(const hostkit::Settings& settings) {
    auto* const book = new wxNotebook(this, wxID_ANY);
    m_form = new LetterForm(book);
    m_preview =
        new wxTextCtrl(book, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE | wxTE_READONLY);
    book->AddPage(m_form, Shown(Words("Write")));
    book->AddPage(m_preview, Shown(Words("Preview")));
    book->Bind(wxEVT_NOTEBOOK_PAGE_CHANGED, [this](wxBookCtrlEvent& event) {
        event.Skip();
        if (event.GetSelection() == 1) Preview();
    });
    auto* const panel = new wxPanel(this);
    m_server = new wxTextCtrl(panel, wxID_ANY, Shown(settings.server.value_or("")));
    m_server->SetName("server");
    desktop::SetAccessibleName(*m_server, Words("Mail server"));
    auto* const line = new wxBoxSizer(wxHORIZONTAL);
    line->Add(new wxStaticText(panel, wxID_ANY, Shown(Words("Mail server"))), wxSizerFlags().CentreVertical());
    line->Add(m_server, wxSizerFlags(1).Border(wxLEFT, FromDIP(kGap)));
    auto* const send = new wxButton(panel, wxID_APPLY, Shown(Words("&Send")));
    send->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Send(); });
    line->Add(send, wxSizerFlags().Border(wxLEFT, FromDIP(kGap)));
    panel->SetSizer(line);
    auto* const all = new wxBoxSizer(wxVERTICAL);
    all->Add(book, wxSizerFlags(1).Expand());
    all->Add(panel, wxSizerFlags().Expand().Border(wxALL, FromDIP(kGap)));
    SetSizer(all);
}

void WriteWindow::OnClose(wxCloseEvent& event) {
    if (m_bBusy && event.CanVeto()) return event.Veto();
    if (!event.CanVeto()) {
        // The session ends, and nobody can be asked: it is offered at the next start.
        Keep();
        m_recovery->Leave();
        Destroy();
        return;
    }
    if (!IsModified()) {
        Destroy();
        return;
    }
    switch (
        Ask(this, Words("This mail was not saved."), {Words("Save draft"), Words("Discard"), Words("Go on writing")})) {
        case 0:
            if (!SaveDraft()) return event.Veto();
            break;
        case 1:
            break;
        default:
            return event.Veto();
    }
    Destroy();
}

void WriteWindow::Keep() {
    try {
        if (IsModified()) m_recovery->Keep(m_form->Typed());
        m_bKeepFailed = false;
    } catch (const hostkit::Failure& failure) {
        if (!std::exchange(m_bKeepFailed, true)) Complain(this, failure.what());
    }
}

template <class Work>
bool WriteWindow::Run(Work work) {
    if (m_bBusy) return false;
    try {
        CMailDoc doc;
        m_form->Typed().Fill(doc);
        m_bBusy = true;
        const Outcome outcome = RunWork([&] { return work(doc); });
        m_bBusy = false;
        if (!outcome.text.empty() && outcome.state != Outcome::State::Cancelled)
            outcome ? Inform(this, outcome.text) : Complain(this, outcome.text);
        if (outcome.failure) m_form->GoTo(outcome.failure->Where().field);
        return bool(outcome);
    } catch (const hostkit::Failure& failure) {
        m_bBusy = false;
        Complain(this, failure.what());
        m_form->GoTo(failure.Where().field);
        return false;
    }
}

void WriteWindow::Send() {
    const bool sent = Run([this](CMailDoc& doc) {
        hostkit::SetServer(Utf8(m_server->GetValue()), doc);
        hostkit::CheckEnvelope(doc);
        return hostkit::SendLetter(doc);
    });
    if (sent) Destroy();
}

void WriteWindow::SaveMessage() {
    wxFileDialog dialog(this, Shown(Words("Save as a message")), wxEmptyString, "mail.eml",
                        Shown(Words("Messages")) + " (*.eml)|*.eml", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() != wxID_OK) return;
    const std::filesystem::path file = Utf8(dialog.GetPath());
    if (Run([&](CMailDoc& doc) { return hostkit::SaveLetter(doc, file); })) m_kept = m_form->Typed();
}

bool WriteWindow::SaveDraft() {
    if (m_draft.empty()) {
        wxFileDialog dialog(this, Shown(Words("Save draft")), wxEmptyString, "draft.maildraft",
                            Shown(Words("Drafts")) + " (*.maildraft)|*.maildraft", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
        if (dialog.ShowModal() != wxID_OK) return false;
        m_draft = Utf8(dialog.GetPath());
    }
    try {
        const Letter letter = m_form->Typed();
        hostkit::SaveDraft(letter, m_draft);
        m_kept = letter;
        return true;
    } catch (const hostkit::Failure& failure) {
        m_draft.clear();
        Complain(this, failure.what());
        return false;
    }
}

void WriteWindow::Preview() {
    try {
        m_preview->ChangeValue(Shown(PreviewOf(m_form->Typed())));
    } catch (const hostkit::Failure& failure) {
        m_preview->ChangeValue(Shown(failure.what()));
    }
}
