// Work: saving or sending under the engine's progress dialog.
#pragma once

#include <hostkit/letter/Outcome.h>
#include <wx/utils.h>
#include <wx/weakref.h>
#include <wx/window.h>

// Runs the work with all windows of the program disabled, so that no message which the dialog dispatches begins another
// one or touches the mail; the keyboard is where it was behind it.
template <class Function>
hostkit::Outcome RunWork(Function work) {
    const wxWeakRef<wxWindow> focus(wxWindow::FindFocus());
    hostkit::Outcome outcome;
    {
        const wxWindowDisabler disabled;
        outcome = work();
    }
    if (focus != nullptr) focus->SetFocus();
    return outcome;
}
