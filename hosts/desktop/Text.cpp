#include "Text.h"

#include <algorithm>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <wx/msgdlg.h>

#include <mailengine/support/FileUtility.h>

namespace {

constexpr char kProgram[] = "mailengine";

}  // namespace

wxString Shown(const std::string& utf8) {
    return wxString::FromUTF8(hostkit::IsUtf8(utf8) ? utf8 : hostkit::TextOf(utf8));
}

std::string SizeShown(std::uintmax_t bytes) {
    const auto most = static_cast<std::uintmax_t>(INT32_MAX);
    return hostkit::FromCodePage(CFileUtility::SizeAutoUnit(static_cast<std::int32_t>(std::min(bytes, most))).View());
}

void Complain(wxWindow* owner, const std::string& text) {
    wxMessageDialog(owner, Shown(text), kProgram, wxOK | wxICON_EXCLAMATION).ShowModal();
}

void Inform(wxWindow* owner, const std::string& text) {
    wxMessageDialog(owner, Shown(text), kProgram, wxOK | wxICON_INFORMATION).ShowModal();
}

int Ask(wxWindow* owner, const std::string& text, const std::vector<std::string>& answers) {
    const bool three = answers.size() == 3;
    wxMessageDialog box(owner, Shown(text), kProgram, (three ? wxYES_NO | wxCANCEL : wxYES_NO) | wxICON_QUESTION);
    if (three)
        box.SetYesNoCancelLabels(Shown(answers[0]), Shown(answers[1]), Shown(answers[2]));
    else
        box.SetYesNoLabels(Shown(answers[0]), Shown(answers[1]));
    switch (box.ShowModal()) {
        case wxID_YES:
            return 0;
        case wxID_NO:
            return 1;
        default:
            return static_cast<int>(answers.size()) - 1;
    }
}
