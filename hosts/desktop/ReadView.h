// ReadView: one message on the screen, as its sender wrote it.
#pragma once

#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/OpenedMail.h>
#include <memory>
#include <string>
#include <wx/panel.h>

class wxButton;
class wxListBox;
class wxStaticText;
class wxTextCtrl;

class ReadView : public wxPanel {
public:
    explicit ReadView(wxWindow* parent);

    // Shows the message, which comes byte for byte as its store has it, with its attachments in a folder of the view's
    // own until another is shown. Throws hostkit::Failure.
    void ShowMessage(std::string message, const std::string& name);
    void Clear();
    // The message that is shown, empty if none is, and its name for people.
    const std::string& Message() const { return m_message; }
    const std::string& Name() const { return m_name; }

private:
    void ShowText(const hostkit::OpenedMail& mail);
    void ShowFiles();
    void Save();
    void SaveAll();
    void Copy(const hostkit::OpenedMail::File& file, const std::filesystem::path& target);

    std::string m_message, m_name;
    std::unique_ptr<hostkit::WorkFolder> m_folder;
    std::vector<hostkit::OpenedMail::File> m_files;
    wxStaticText* m_subject;
    wxTextCtrl* m_header;
    wxTextCtrl* m_body;
    wxStaticText* m_notes;
    wxListBox* m_list;
    wxButton* m_save;
    wxButton* m_saveAll;
};
