#include <desktop/FileChoice.h>
#include <desktop/Text.h>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/msgdlg.h>
#include <wx/stockitem.h>

#include <mailengine/support/platform/files/Path.h>

namespace desktop {

namespace {

// The toolkit ends its list without the bars that the library puts behind it.
wxString FilterOf(const CString& filter) {
    wxString list = ToToolkit(filter);
    while (list.EndsWith("|"))
        list.RemoveLast();
    return list.empty() ? wxString(wxFileSelectorDefaultWildcardStr) : list;
}

// Puts the extension behind a name that has none. False: the name is another file's now, about which the toolkit has
// asked nothing.
bool Complete(const FileDialogRequest& request, wxFileName& name) {
    if (request.open != 0 || request.defaultExtension.IsEmpty() || name.HasExt()) return true;
    name.SetExt(ToToolkit(request.defaultExtension));
    return !name.Exists();
}

bool ToPath(wxWindow* owner, const wxFileName& name, CString& path) {
    std::string error;
    if (platform::ToLibraryPath(name.GetFullPath().utf8_string(), path, error) != 0) return true;
    wxMessageBox(wxString::FromUTF8(error), wxMessageBoxCaptionStr, wxOK | wxICON_EXCLAMATION, owner);
    return false;
}

}  // namespace

int ChooseFile(wxWindow* owner, const FileDialogRequest& request, CString& path) {
    const bool opens = request.open != 0;
    wxFileName name(wxString::FromUTF8(platform::ToNativePath(request.fileName)));
    for (;;) {
        wxFileDialog dialog(owner, wxGetStockLabel(opens ? wxID_OPEN : wxID_SAVEAS, wxSTOCK_NOFLAGS), name.GetPath(),
                            name.GetFullName(), FilterOf(request.filter),
                            opens ? wxFD_OPEN | wxFD_FILE_MUST_EXIST : wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
        if (dialog.ShowModal() != wxID_OK) return IDCANCEL;
        name.Assign(dialog.GetPath());
        // Chosen once more, under its whole name, such a file is asked about.
        if (Complete(request, name) && ToPath(owner, name, path)) return IDOK;
    }
}

}  // namespace desktop
