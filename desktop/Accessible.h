// Accessible: what a screen reader says of a control that has no text of its own, or none that it could find. The
// toolkit has no call for it on this system. User-interface thread.
#pragma once

#include <desktop/Export.h>
#include <string>

class wxWindow;

namespace desktop {

// Gives the control a name, in UTF-8; a second one takes the place of the first.
DESKTOP_API void SetAccessibleName(wxWindow& control, const std::string& name);

// Tells that a control which draws itself is a progress bar.
void SetProgressBarRole(wxWindow& control);

}  // namespace desktop
