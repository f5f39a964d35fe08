// TemplateDialog: a dialog made from a template of the library's resources. It tells the library what the user does, by
// the notices of CWindowSystem, from its making until Retire.
#pragma once

#include <utility>
#include <vector>
#include <wx/dialog.h>
#include <wx/weakref.h>

#include <mailengine/support/platform/windows/ResourceRegistry.h>

namespace desktop {

class TemplateDialog : public wxDialog {
public:
    // Not shown yet. parent, lent, may be null. Dialog units are scaled to the toolkit's font, which takes the place of
    // the template's. Controls of a class that no dialog of the library has are left out.
    TemplateDialog(const platform::DialogTemplate& dialog, wxWindow* parent);
    // Tells the library that the window goes, if it goes by itself.
    ~TemplateDialog() override;

    // Gives the keyboard to the first control that can have it: without it a key has no way to the dialog.
    bool Show(bool show = true) override;
    // The control with that number of the template, null if there is none.
    wxWindow* Control(int id) const;
    // Takes the window off the screen, gives the keyboard back, and tells the library nothing any more. The toolkit
    // deletes the object as soon as none of its handlers can be running.
    void Retire();

private:
    void AddControl(const platform::DialogControl& control);
    wxWindow* MakeControl(const platform::DialogControl& control);
    wxRect PixelsOf(int x, int y, int width, int height) const;
    void Press(int id);
    void OnKey(wxKeyEvent& event);
    void OnClose(wxCloseEvent& event);

    std::vector<std::pair<int, wxWindow*>> m_controls;
    wxWeakRef<wxWindow> m_pFocusBefore;
    bool m_bStands = true;
};

}  // namespace desktop
