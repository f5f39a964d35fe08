// WriteWindow: a mail that is being written. Nothing typed is lost: closing asks, a failure leaves all as it is, and
// what is typed is kept in a recovery file each ten seconds.
#pragma once

#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/Outcome.h>
#include <hostkit/letter/Recovery.h>
#include <hostkit/settings/Settings.h>
#include <memory>
#include <wx/frame.h>
#include <wx/timer.h>

#include "LetterForm.h"

class wxTextCtrl;

class WriteWindow : public wxFrame {
public:
    // recovery is a new one, or the one that the letter was kept in. files, which may be null, holds attachments that
    // are there for this mail alone.
    WriteWindow(wxWindow* parent, const hostkit::Settings& settings, const hostkit::Letter& letter,
                std::unique_ptr<hostkit::Recovery> recovery, std::unique_ptr<hostkit::WorkFolder> files = nullptr);

    LetterForm& Form() { return *m_form; }
    // The letter differs from what the user has kept, or was never typed at.
    bool IsModified() const { return m_form->Typed() != m_kept; }
    // It is not the user's yet: closing asks also where nothing was typed since.
    void SetModified() { m_kept = {}; }

private:
    void MakeMenu();
    void MakeContent(const hostkit::Settings& settings);
    void OnClose(wxCloseEvent& event);
    void Keep();
    void Send();
    void SaveMessage();
    bool SaveDraft();
    void Preview();
    // Runs the work with the document of what is typed; says what came of it. False: it was not done.
    template <class Work>
    bool Run(Work work);

    std::unique_ptr<hostkit::Recovery> m_recovery;
    std::unique_ptr<hostkit::WorkFolder> m_files;
    hostkit::Letter m_kept;
    std::filesystem::path m_draft;  // where it was saved or opened; empty: nowhere yet
    LetterForm* m_form = nullptr;
    wxTextCtrl* m_server = nullptr;
    wxTextCtrl* m_preview = nullptr;
    wxTimer m_keep;
    bool m_bBusy = false;        // a work runs, whose messages may ask for another
    bool m_bKeepFailed = false;  // told once, not each ten seconds
};
