// MainWindow: a list of messages above the one that is chosen, and the way to write, answer and forward.
#pragma once

#include <filesystem>
#include <hostkit/letter/Answer.h>
#include <hostkit/letter/Letter.h>
#include <hostkit/letter/Recovery.h>
#include <hostkit/settings/Settings.h>
#include <memory>
#include <wx/frame.h>

class MailList;
class ReadView;
class WriteWindow;

class MainWindow : public wxFrame {
public:
    explicit MainWindow(hostkit::Settings settings);

    // Opens what a user may mean by an argument: a mailto URL, a draft, a folder, an mbox or a message. What cannot be
    // opened is said in a box.
    void Open(const std::string& argument);
    // Offers what an earlier start left; each of them gets a window of its own.
    void OfferRecovered();
    // A new mail with what the letter has, and the settings' sender and signature where it has none.
    WriteWindow* Write(hostkit::Letter letter);
    WriteWindow* Reply(hostkit::Audience audience);
    WriteWindow* Forward();
    ReadView& View() { return *m_view; }
    MailList& List() { return *m_list; }

private:
    void MakeMenu();
    void MakeContent();
    void OpenFolder();
    void OpenFile();
    void OpenDraft(const std::filesystem::path& file);
    void ShowChosen();
    void ShowStatus();
    void OnClose(wxCloseEvent& event);
    hostkit::Letter Beginning() const;

    hostkit::Settings m_settings;
    MailList* m_list = nullptr;
    ReadView* m_view = nullptr;
};
