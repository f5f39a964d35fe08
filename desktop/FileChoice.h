// FileChoice: lets the user choose a path with the toolkit's file dialog.
#pragma once

#include <mailengine/support/platform/windows/WindowSystem.h>

class wxWindow;

namespace desktop {

// As CWindowSystem::RunFileDialog, whose contract holds.
int ChooseFile(wxWindow* owner, const FileDialogRequest& request, CString& path);

}  // namespace desktop
