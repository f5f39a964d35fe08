// LetterForm: the fields of a letter on the screen. What is wrong with a value is told as it is typed, and characters
// that a Japanese mail cannot carry are marked.
#pragma once

#include <hostkit/letter/Letter.h>
#include <string>
#include <vector>
#include <wx/panel.h>
#include <wx/timer.h>

class wxListBox;
class wxStaticText;
class wxTextCtrl;
class wxFlexGridSizer;

class LetterForm : public wxPanel {
public:
    explicit LetterForm(wxWindow* parent);

    void Fill(const hostkit::Letter& letter);
    // What is typed, with what Fill was given beyond the fields.
    hostkit::Letter Typed() const;
    void AddFiles(const std::vector<std::filesystem::path>& files);
    // Puts the keyboard into a field, that of a failure for instance.
    void GoTo(hostkit::Field field);
    // The kit's sentence for what is wrong, in front the label that the field has here; empty if nothing is.
    std::string Problem() const;

private:
    // One row: a field of the letter, which is one line or many, a list of addresses or a text.
    struct Row {
        hostkit::Field field;
        int lines;
        const char* label;
        std::vector<std::string> hostkit::Letter::*list;
        std::optional<std::string> hostkit::Letter::*text;
    };
    static const Row kRows[];

    void AddRow(wxFlexGridSizer& grid, const Row& row);
    wxSizer* MakeFiles();
    void GoToFirst();
    void ShowFiles();
    void AskForFiles();
    void RemoveFile();
    void Check();
    void Mark(wxTextCtrl& control) const;

    hostkit::Letter m_letter;  // what no field shows, and the attachments
    std::vector<wxTextCtrl*> m_controls;
    wxListBox* m_files;
    wxStaticText* m_total;
    wxStaticText* m_problem;
    wxTimer m_check;
};
