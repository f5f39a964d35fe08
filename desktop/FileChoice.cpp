#include <desktop/FileChoice.h>
#include <desktop/Text.h>
#include <filesystem>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/intl.h>
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

// The toolkit has asked about the name as it was typed, and knows nothing of what is put behind it.
bool MayReplace(wxWindow* owner, const wxFileName& path) {
    if (!path.Exists()) return true;
    const wxString question = wxString::Format(
        wxGetTranslation("File '%s' already exists, do you really want to overwrite it?"), path.GetFullName());
    return wxMessageBox(question, wxGetStockLabel(wxID_SAVEAS, wxSTOCK_NOFLAGS),
                        wxYES_NO | wxNO_DEFAULT | wxICON_WARNING, owner) == wxYES;
}

// What was typed, with the extension where it has none. False: another name is to be chosen.
bool Complete(wxWindow* owner, const FileDialogRequest& request, wxFileName& chosen) {
    if (request.open != 0 || request.defaultExtension.IsEmpty() || chosen.HasExt()) return true;
    chosen.SetExt(ToToolkit(request.defaultExtension));
    return MayReplace(owner, chosen);
}

bool ToPath(wxWindow* owner, const wxFileName& chosen, CString& path) {
    std::string error;
    if (platform::ToLibraryPath(chosen.GetFullPath().utf8_string(), path, error) != 0) return true;
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
        wxFileName chosen = name;
        if (Complete(owner, request, chosen) && ToPath(owner, chosen, path)) return IDOK;
    }
}

}  // namespace desktop
