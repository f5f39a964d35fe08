#include "ReadView.h"

#include <desktop/Accessible.h>
#include <hostkit/characters/MailText.h>
#include <wx/button.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/listbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "Text.h"

namespace {

namespace fs = std::filesystem;
using hostkit::LineShown;
using hostkit::OpenedMail;
using hostkit::Words;

constexpr int kGap = 6;
constexpr int kFileRows = 3;

std::string LineOfAll(const std::vector<hostkit::Mailbox>& boxes) {
    std::string line;
    for (const hostkit::Mailbox& box : boxes) {
        line += line.empty() ? "" : ", ";
        line += box.name.empty() ? box.address : box.name + " <" + box.address + ">";
    }
    return LineShown(line);
}

std::string HeaderOf(const OpenedMail& mail) {
    std::string text = Words("From: {1}", LineOfAll(mail.from)) + '\n' + Words("To: {1}", LineOfAll(mail.to)) + '\n';
    if (!mail.cc.empty()) text += Words("Cc: {1}", LineOfAll(mail.cc)) + '\n';
    return text + Words("Date: {1}", LineShown(mail.date));
}

}  // namespace

ReadView::ReadView(wxWindow* parent)
    : wxPanel(parent),
      m_subject(new wxStaticText(this, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                                 wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE)),
      m_header(new wxTextCtrl(this, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                              wxTE_MULTILINE | wxTE_READONLY | wxBORDER_NONE)),
      m_body(new wxTextCtrl(this, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                            wxTE_MULTILINE | wxTE_READONLY)),
      m_notes(new wxStaticText(this, wxID_ANY, wxEmptyString)),
      m_list(new wxListBox(this, wxID_ANY)),
      m_save(new wxButton(this, wxID_ANY, Shown(Words("&Save attachment…")))),
      m_saveAll(new wxButton(this, wxID_ANY, Shown(Words("Save a&ll…")))) {
    m_subject->SetFont(m_subject->GetFont().Bold().Scaled(1.2f));
    const int line = m_header->GetCharHeight();
    m_header->SetBackgroundColour(GetBackgroundColour());
    m_header->SetMinSize({-1, 5 * line});
    m_list->SetMinSize({-1, (kFileRows + 1) * line});
    desktop::SetAccessibleName(*m_header, Words("Header"));
    desktop::SetAccessibleName(*m_body, Words("Body"));
    desktop::SetAccessibleName(*m_list, Words("Attachments"));
    auto* const buttons = new wxBoxSizer(wxVERTICAL);
    buttons->Add(m_save, wxSizerFlags().Expand());
    buttons->Add(m_saveAll, wxSizerFlags().Expand().Border(wxTOP, FromDIP(kGap)));
    auto* const files = new wxBoxSizer(wxHORIZONTAL);
    files->Add(m_list, wxSizerFlags(1).Expand());
    files->Add(buttons, wxSizerFlags().Border(wxLEFT, FromDIP(kGap)));
    auto* const all = new wxBoxSizer(wxVERTICAL);
    const wxSizerFlags wide = wxSizerFlags().Expand().Border(wxALL, FromDIP(kGap));
    all->Add(m_subject, wide);
    all->Add(m_header, wide);
    all->Add(m_body, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, FromDIP(kGap)));
    all->Add(m_notes, wide);
    all->Add(files, wide);
    SetSizer(all);
    m_save->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Save(); });
    m_saveAll->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { SaveAll(); });
    Clear();
}

void ReadView::ShowMessage(std::string message, const std::string& name) {
    auto folder = std::make_unique<hostkit::WorkFolder>();
    OpenedMail mail = hostkit::OpenMail(message, {.folder = folder->Path()});
    m_message = std::move(message);
    m_name = name;
    m_files = std::move(mail.files);
    m_folder = std::move(folder);
    ShowText(mail);
    ShowFiles();
}

void ReadView::Clear() {
    m_message.clear();
    m_files.clear();
    m_folder.reset();
    ShowText({});
    m_header->Clear();
    ShowFiles();
}

void ReadView::ShowText(const OpenedMail& mail) {
    m_subject->SetLabelText(Shown(LineShown(mail.subject)));
    m_header->ChangeValue(Shown(HeaderOf(mail)));
    m_body->ChangeValue(Shown(hostkit::BodyShown(mail.body)));
    m_body->SetInsertionPoint(0);
    std::string notes;
    for (const std::string& warning : mail.warnings)
        notes += (notes.empty() ? "" : "\n") + warning;
    if (!mail.fault.empty()) notes += (notes.empty() ? "" : "\n") + mail.fault;
    m_notes->SetLabelText(Shown(notes));
    m_notes->Show(!notes.empty());
}

void ReadView::ShowFiles() {
    m_list->Clear();
    for (const OpenedMail::File& file : m_files)
        m_list->Append(Shown(LineShown(file.name) + "  (" + SizeShown(file.size) + ")"));
    if (!m_files.empty()) m_list->SetSelection(0);
    for (wxWindow* const window :
         {static_cast<wxWindow*>(m_list), static_cast<wxWindow*>(m_save), static_cast<wxWindow*>(m_saveAll)})
        window->Show(!m_files.empty());
    Layout();
}

void ReadView::Save() {
    const int chosen = m_list->GetSelection();
    if (chosen < 0) return;
    const OpenedMail::File& file = m_files[static_cast<std::size_t>(chosen)];
    wxFileDialog dialog(this, Shown(Words("Save attachment")), wxEmptyString, Shown(file.name),
                        wxFileSelectorDefaultWildcardStr, wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() == wxID_OK) Copy(file, Utf8(dialog.GetPath()));
}

// All of them whole or none, and no file that stands there is replaced: as the kit extracts them.
void ReadView::SaveAll() {
    wxDirDialog dialog(this, Shown(Words("Save all attachments in a folder")));
    if (dialog.ShowModal() != wxID_OK) return;
    try {
        const OpenedMail mail = hostkit::OpenMail(m_message, {.folder = Utf8(dialog.GetPath())});
        if (!mail.fault.empty()) Complain(this, mail.fault);
    } catch (const hostkit::Failure& failure) {
        Complain(this, failure.what());
    }
}

void ReadView::Copy(const OpenedMail::File& file, const fs::path& target) {
    std::error_code error;
    fs::copy_file(file.path, target, fs::copy_options::overwrite_existing, error);
    if (error) Complain(this, Words("{1} was not saved: {2}", target.native(), hostkit::SystemWords(error.value())));
}
