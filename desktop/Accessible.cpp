#include <desktop/Accessible.h>
#include <gtk/gtk.h>
#include <wx/window.h>

namespace desktop {

namespace {

AtkObject* AccessibleOf(const wxWindow& control) {
    GtkWidget* const widget = control.GetHandle();
    return widget == nullptr ? nullptr : gtk_widget_get_accessible(widget);
}

}  // namespace

void SetAccessibleName(wxWindow& control, const std::string& name) {
    if (AtkObject* const accessible = AccessibleOf(control)) atk_object_set_name(accessible, name.c_str());
}

void SetProgressBarRole(wxWindow& control) {
    if (AtkObject* const accessible = AccessibleOf(control)) atk_object_set_role(accessible, ATK_ROLE_PROGRESS_BAR);
}

}  // namespace desktop
