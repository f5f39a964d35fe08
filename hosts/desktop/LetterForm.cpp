#include "LetterForm.h"

#include <desktop/Accessible.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/letter/AddressList.h>
#include <hostkit/letter/Addresses.h>
#include <wx/button.h>
#include <wx/filedlg.h>
#include <wx/listbox.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "Text.h"

using hostkit::Field;
using hostkit::Letter;
using hostkit::Words;

namespace {

constexpr int kGap = 6;
constexpr int kCheckPause = 300;  // milliseconds behind the last key: an address is wrong while it is typed

std::uintmax_t SizeOf(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    return error ? 0 : size;
}

}  // namespace

const LetterForm::Row LetterForm::kRows[] = {
    {Field::From, 1, hostkit::Marked("From"), nullptr, &Letter::from},
    {Field::To, 1, hostkit::Marked("To"), &Letter::to, nullptr},
    {Field::Cc, 1, hostkit::Marked("Cc"), &Letter::cc, nullptr},
    {Field::Bcc, 1, hostkit::Marked("Bcc"), &Letter::bcc, nullptr},
    {Field::Subject, 1, hostkit::Marked("Subject"), nullptr, &Letter::subject},
    {Field::Dear, 1, hostkit::Marked("Dear"), nullptr, &Letter::dear},
    {Field::Greeting, 1, hostkit::Marked("Greeting"), nullptr, &Letter::greeting},
    {Field::Body, 8, hostkit::Marked("Body"), nullptr, &Letter::body},
    {Field::Closing, 1, hostkit::Marked("Closing"), nullptr, &Letter::closing},
    {Field::Signature, 3, hostkit::Marked("Signature"), nullptr, &Letter::signature},
};

LetterForm::LetterForm(wxWindow* parent)
    : wxPanel(parent), m_problem(new wxStaticText(this, wxID_ANY, wxEmptyString)), m_check(this) {
    auto* const grid = new wxFlexGridSizer(2, FromDIP(kGap), FromDIP(kGap));
    grid->AddGrowableCol(1);
    for (const Row& row : kRows)
        AddRow(*grid, row);
    auto* const all = new wxBoxSizer(wxVERTICAL);
    all->Add(grid, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(kGap)));
    all->Add(MakeFiles(), wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, FromDIP(kGap)));
    all->Add(m_problem, wxSizerFlags().Expand().Border(wxALL, FromDIP(kGap)));
    SetSizer(all);
    m_problem->SetFont(m_problem->GetFont().Bold());
    Bind(wxEVT_TEXT, [this](wxCommandEvent& event) {
        event.Skip();
        m_check.StartOnce(kCheckPause);
    });
    Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Check(); });
}

void LetterForm::AddRow(wxFlexGridSizer& grid, const Row& row) {
    const wxString label = Shown(Words(row.label));
    auto* const name = new wxStaticText(this, wxID_ANY, label);
    grid.Add(name, row.lines == 1 ? wxSizerFlags().CentreVertical().Right() : wxSizerFlags().Right());
    auto* const control = new wxTextCtrl(this, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                                         row.lines == 1 ? 0 : wxTE_MULTILINE | wxTE_RICH2);
    if (row.lines > 1) control->SetMinSize({-1, (row.lines + 1) * control->GetCharHeight()});
    desktop::SetAccessibleName(*control, Utf8(label));
    grid.Add(control, wxSizerFlags(1).Expand());
    if (row.field == Field::Body) grid.AddGrowableRow(m_controls.size());
    m_controls.push_back(control);
}

wxSizer* LetterForm::MakeFiles() {
    m_files = new wxListBox(this, wxID_ANY);
    m_files->SetMinSize({-1, 3 * GetCharHeight()});
    m_total = new wxStaticText(this, wxID_ANY, wxEmptyString);
    desktop::SetAccessibleName(*m_files, Words("Attachments"));
    auto* const add = new wxButton(this, wxID_ANY, Shown(Words("&Attach file…")));
    auto* const remove = new wxButton(this, wxID_ANY, Shown(Words("&Remove")));
    add->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { AskForFiles(); });
    remove->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { RemoveFile(); });
    auto* const buttons = new wxBoxSizer(wxVERTICAL);
    buttons->Add(add, wxSizerFlags().Expand());
    buttons->Add(remove, wxSizerFlags().Expand().Border(wxTOP, FromDIP(kGap)));
    buttons->Add(m_total, wxSizerFlags().Right().Border(wxTOP, FromDIP(kGap)));
    auto* const files = new wxBoxSizer(wxHORIZONTAL);
    files->Add(m_files, wxSizerFlags(1).Expand());
    files->Add(buttons, wxSizerFlags().Border(wxLEFT, FromDIP(kGap)));
    return files;
}

void LetterForm::Fill(const Letter& letter) {
    m_letter = letter;
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Row& row = kRows[i];
        std::string text = row.list != nullptr ? hostkit::LineOf(letter.*row.list) : (letter.*row.text).value_or("");
        std::erase(text, '\r');
        // A field of one line would show its line ends as signs: what has them goes on in the body.
        if (row.lines == 1) std::replace(text.begin(), text.end(), '\n', ' ');
        m_controls[i]->ChangeValue(Shown(text));
        m_controls[i]->SetInsertionPoint(0);
    }
    ShowFiles();
    Check();
    GoToFirst();
}

Letter LetterForm::Typed() const {
    Letter letter = m_letter;
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Row& row = kRows[i];
        const std::string text = Utf8(m_controls[i]->GetValue());
        if (row.list != nullptr)
            letter.*row.list = hostkit::AddressesIn(text);
        else if (text.empty())
            (letter.*row.text).reset();
        else
            letter.*row.text = text;
    }
    return letter;
}

void LetterForm::AddFiles(const std::vector<std::filesystem::path>& files) {
    m_letter.attachments.insert(m_letter.attachments.end(), files.begin(), files.end());
    ShowFiles();
}

void LetterForm::GoTo(Field field) {
    for (std::size_t i = 0; i < m_controls.size(); ++i)
        if (kRows[i].field == field) m_controls[i]->SetFocus();
}

// Where typing goes on: the first of these that is empty, else the body.
void LetterForm::GoToFirst() {
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Field field = kRows[i].field;
        const bool wanted = field == Field::From || field == Field::To || field == Field::Subject;
        if (wanted && m_controls[i]->IsEmpty()) return m_controls[i]->SetFocus();
    }
    GoTo(Field::Body);
}

void LetterForm::ShowFiles() {
    m_files->Clear();
    std::uintmax_t total = 0;
    for (const std::filesystem::path& file : m_letter.attachments) {
        total += SizeOf(file);
        m_files->Append(Shown(hostkit::LineShown(file.filename().native()) + "  (" + SizeShown(SizeOf(file)) + ")"));
    }
    m_total->SetLabelText(m_letter.attachments.empty() ? wxString() : Shown(Words("{1} in all", SizeShown(total))));
    if (IsShownOnScreen()) Layout();
}

void LetterForm::AskForFiles() {
    wxFileDialog dialog(this, Shown(Words("Attach files")), wxEmptyString, wxEmptyString,
                        wxFileSelectorDefaultWildcardStr, wxFD_OPEN | wxFD_FILE_MUST_EXIST | wxFD_MULTIPLE);
    if (dialog.ShowModal() != wxID_OK) return;
    wxArrayString chosen;
    dialog.GetPaths(chosen);
    std::vector<std::filesystem::path> files;
    for (const wxString& path : chosen)
        files.emplace_back(Utf8(path));
    AddFiles(files);
}

void LetterForm::RemoveFile() {
    const int chosen = m_files->GetSelection();
    if (chosen < 0) return;
    m_letter.attachments.erase(m_letter.attachments.begin() + chosen);
    ShowFiles();
}

std::string LetterForm::Problem() const {
    const Letter letter = Typed();
    for (const Row& row : kRows) {
        try {
            std::vector<std::string> addresses = row.list != nullptr ? letter.*row.list : std::vector<std::string>();
            if (row.field == Field::From && letter.from) addresses.push_back(*letter.from);
            for (const std::string& address : addresses)
                (void)hostkit::AddressOf(address, letter.missing, row.field);
            if (row.text != nullptr && letter.*row.text)
                (void)hostkit::ToCodePage(*(letter.*row.text), hostkit::Extent::Letter, letter.missing, {row.field});
        } catch (const hostkit::Failure& failure) {
            return failure.Sentence(Words(row.label));
        }
    }
    return {};
}

void LetterForm::Check() {
    for (wxTextCtrl* const control : m_controls)
        if (control->IsMultiLine()) Mark(*control);
    m_problem->SetLabelText(Shown(Problem()));
    if (IsShownOnScreen()) Layout();
}

void LetterForm::Mark(wxTextCtrl& control) const {
    const wxTextAttr plain(control.GetForegroundColour(), control.GetBackgroundColour());
    const wxTextAttr marked(wxColour(255, 255, 255), wxColour(200, 0, 0));  // legible in front of light and dark
    control.SetStyle(0, control.GetLastPosition(), plain);
    for (const hostkit::Place& place : hostkit::UncarriedIn(Utf8(control.GetValue()))) {
        const long at = control.XYToPosition(static_cast<long>(place.column) - 1, static_cast<long>(place.line) - 1);
        control.SetStyle(at, at + 1, marked);
    }
}
