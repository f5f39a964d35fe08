#include <cstdint>
#include <desktop/ProgressBar.h>
#include <desktop/TemplateDialog.h>
#include <desktop/Text.h>
#include <desktop/ToolkitWindows.h>
#include <string_view>
#include <wx/button.h>

#include <mailengine/support/platform/windows/WindowSystem.h>

namespace desktop {

namespace {

// Bits of a template's style.
constexpr std::uint32_t kSystemMenu = 0x00080000;  // of a dialog: a close box
constexpr std::uint32_t kVisible = 0x10000000;     // of a control

long FrameOf(const platform::DialogTemplate& dialog) {
    return wxCAPTION | ((dialog.style & kSystemMenu) != 0 ? wxSYSTEM_MENU | wxCLOSE_BOX : 0);
}

}  // namespace

TemplateDialog::TemplateDialog(const platform::DialogTemplate& dialog, wxWindow* parent)
    : wxDialog(parent, wxID_ANY, ToToolkit(dialog.caption), wxDefaultPosition, wxDefaultSize, FrameOf(dialog)),
      m_pFocusBefore(wxWindow::FindFocus()) {
    SetClientSize(PixelsOf(0, 0, dialog.width, dialog.height).GetSize());
    for (const platform::DialogControl& control : dialog.controls)
        AddControl(control);
    CentreOnParent();
    Bind(wxEVT_CHAR_HOOK, &TemplateDialog::OnKey, this);
    Bind(wxEVT_CLOSE_WINDOW, &TemplateDialog::OnClose, this);
}

TemplateDialog::~TemplateDialog() {
    if (m_bStands) platform::DeliverDestroy(ToolkitWindows::HandleOf(this));
}

bool TemplateDialog::Show(bool show) {
    if (!wxDialog::Show(show)) return false;
    if (show) SetFocus();
    return true;
}

wxWindow* TemplateDialog::Control(int id) const {
    for (const auto& [number, control] : m_controls)
        if (number == id) return control;
    return nullptr;
}

void TemplateDialog::Retire() {
    m_bStands = false;
    Destroy();
    if (m_pFocusBefore != nullptr) m_pFocusBefore->SetFocus();
}

void TemplateDialog::AddControl(const platform::DialogControl& control) {
    wxWindow* const window = MakeControl(control);
    if (window == nullptr) return;
    window->Show((control.style & kVisible) != 0);
    m_controls.emplace_back(control.id, window);
}

wxWindow* TemplateDialog::MakeControl(const platform::DialogControl& control) {
    const std::string_view kind(control.windowClass);
    const wxRect place = PixelsOf(control.x, control.y, control.width, control.height);
    if (kind == "msctls_progress32") return new ProgressBar(this, place.GetPosition(), place.GetSize());
    if (kind != "button") return nullptr;
    wxButton* const button =
        new wxButton(this, wxID_ANY, ToToolkit(control.text), place.GetPosition(), place.GetSize());
    button->Bind(wxEVT_BUTTON, [this, id = control.id](wxCommandEvent&) { Press(id); });
    return button;
}

wxRect TemplateDialog::PixelsOf(int x, int y, int width, int height) const {
    return {ConvertDialogToPixels(wxPoint(x, y)), ConvertDialogToPixels(wxSize(width, height))};
}

void TemplateDialog::Press(int id) {
    if (m_bStands) (void)platform::DeliverCommand(ToolkitWindows::HandleOf(this), id);
}

// Esc is Cancel whether or not there is a button to be seen, which is why the toolkit's own way does not do.
void TemplateDialog::OnKey(wxKeyEvent& event) {
    if (event.GetKeyCode() == WXK_ESCAPE)
        Press(IDCANCEL);
    else
        event.Skip();
}

// Without a close box the window manager still has a key for it.
void TemplateDialog::OnClose(wxCloseEvent& event) {
    if (!event.CanVeto()) return event.Skip();
    event.Veto();
    Press(IDCANCEL);
}

}  // namespace desktop
