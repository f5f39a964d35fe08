// CProgressCallback: shows the user how far one long operation has come, and lets the user cancel it. Whoever runs the
// operation makes the object, calls Start and Complete, and lends it to the writer, which reports by Callback.
//
// User-interface thread only. Start, Callback and Complete dispatch all waiting window messages before they return, so
// handlers of the host run inside them. The dialog disables its parent window meanwhile; nothing else keeps a handler
// from starting a second operation. A handler may call every operation of the same object, but not destroy it: a
// dialog that it closes or replaces is left alone by the calls that were under way.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

class CProgressDialog;
class CWnd;

class MAILENGINE_API CProgressCallback {
public:
    // Opens nothing yet. title, in code page 932, is the dialog's caption. showCancel: 1 shows the Cancel button; 0
    // hides it, but the Esc key still cancels. parent, lent for the life of the object, may be null.
    CProgressCallback(const char* title, int showCancel, CWnd* parent);
    CProgressCallback(const CProgressCallback&) = delete;
    CProgressCallback& operator=(const CProgressCallback&) = delete;
    // Takes a standing dialog off the screen, with no final display, and enables its parent.
    virtual ~CProgressCallback();

    // Begins an operation of total units (the library counts bytes); 0 stands for 100. Opens the dialog in place of
    // one that stands, and forgets an earlier cancel. 0: there is no dialog on the screen; all else still works.
    int Start(unsigned int total);
    // Adds amount to what is done and moves the bar. 1: go on. 0: the user has cancelled, and the dialog is closed as
    // by Complete; told once, later calls give 1. A press is noticed by the call behind the one that dispatched it.
    int Callback(unsigned int amount);
    // Moves the bar to 100 percent, waits 100 milliseconds so that it is seen, and closes the dialog: whatever the
    // operation came to, also behind a cancel or a failure in the middle. Without a dialog it neither shows nor waits.
    void Complete();
    // 1: a cancel was noticed since the last Start, or by a Callback in whose final display a handler called Start.
    int UserCanceled() { return m_bCanceled; }

private:
    void DoEvents();
    void ShowPercentage(unsigned int percentage);
    unsigned int Percentage() const;
    bool Stands(unsigned int start) const;
    void CloseDialog();

    CString m_strTitle;
    int m_nShowCancel;
    CWnd* m_pParent;
    CProgressDialog* m_pDialog = nullptr;
    int m_bCanceled = 0;
    unsigned int m_nTotal = 100;
    unsigned int m_nDone = 0;
    unsigned int m_nStarts = 0;  // numbers the operations and so the dialogs
    int m_nPumping = 0;          // calls of DoEvents under way, one inside the other
};
