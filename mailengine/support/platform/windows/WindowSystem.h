// CWindowSystem: all that this library asks of the screen and the message queue. A host derives from it for its
// toolkit, or for a terminal, and installs the object; docs/window-systems.md holds a skeleton.
//
// Windows. A handle is any non-null value by which the system knows a window or control; no two that stand share one.
// Only parents and owners may come as null (there is none); every other handle is one that MakeDialog or GetControl
// gave, or one that the host attached to a CWnd of its own (CWnd::Attach), and it still stands. Texts are code page
// 932, without a NUL inside.
//
// Notices. The system tells the library what the user does by the platform::Deliver functions below, at any time at
// which it dispatches messages.
//
// Re-entry. PumpMessage, OnIdle, WaitForSocket, MessageBox and RunFileDialog may run handlers of the host, and those
// may call back into this library. All other calls only draw or note down: they dispatch nothing, and a notice about a
// window that they cause themselves is the only one they may deliver. No call may let an exception out.
//
// Threads. All calls come on the one user-interface thread, and notices are delivered on it.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/windows/ResourceRegistry.h>
#include <mailengine/support/platform/windows/WindowTypes.h>

// What a file dialog is asked to show.
struct FileDialogRequest {
    int open = 1;              // 1: choose an existing file; 0: name a file to save to
    CString defaultExtension;  // what the system adds, with a dot, to a name typed without one; empty: nothing
    CString fileName;          // the name proposed at first
    CString filter;            // pairs of caption and pattern, each ended by '|', and one '|' more; empty: all files
};

class MAILENGINE_API CWindowSystem {
public:
    // What a socket is waited for, and what is reported: one or both.
    static constexpr int kReadable = 1;
    static constexpr int kWritable = 2;

    CWindowSystem() = default;
    CWindowSystem(const CWindowSystem&) = delete;
    CWindowSystem& operator=(const CWindowSystem&) = delete;
    virtual ~CWindowSystem() = default;

    // Makes a modeless dialog with the controls of the template, its caption and their texts. It is not shown
    // before ShowWindow, even where the template's style says otherwise. parent is null for a dialog on its own;
    // it stays enabled, since the dialog itself disables it. From then on the system delivers:
    // - DeliverCommand with the button's number for a press of a button, and with IDCANCEL for the Esc key, also
    //   while the Cancel button is hidden or the system draws none;
    // - DeliverDestroy if the window goes without DestroyWindow, for instance together with its parent.
    // Null: the dialog cannot be made; nothing is left of it. The template stays the library's: read it in the call.
    virtual HWND MakeDialog(const platform::DialogTemplate& dialog, HWND parent) = 0;
    // The control of that dialog with that number. Null: the system has no such control, and nothing about it is
    // asked any more. The handle goes with the dialog.
    virtual HWND GetControl(HWND dialog, int id) = 0;
    // Takes the window and its controls off the screen, and gives the keyboard back to who had it before; the handles,
    // and messages that still wait for it, are gone. A toolkit may delete the objects later, as long as nothing is
    // delivered from them any more. The parent was enabled before.
    // The library has run the window's destroy handler before, so the system need not deliver the notice here.
    virtual void DestroyWindow(HWND window) = 0;
    // SW_HIDE hides a window or control, any other state shows it. A dialog that was shown takes the keyboard. It
    // should be painted at once, since the library may be busy for a while; where a display maps windows in its own
    // time, as soon as messages are pumped.
    virtual void ShowWindow(HWND window, int state) = 0;
    // 0: the window takes no key and no click until it is enabled again. Not 0: it does. Calls do not add up.
    virtual void EnableWindow(HWND window, int enable) = 0;
    // A window's caption or a control's text.
    virtual void SetWindowText(HWND window, const CString& text) = 0;
    // The lowest and highest position of a progress bar. Without a call it is 0 to 100.
    virtual void SetProgressRange(HWND bar, int lowest, int highest) = 0;
    // Moves a progress bar to a position of its range. Called some thousand times a second while a mail is written:
    // return at once if nothing changes on the screen, and paint at once if something does.
    virtual void SetProgressPosition(HWND bar, int position) = 0;

    // Not 0: a message waits for this thread, and PumpMessage would take it. Must not block. Asked some thousand times
    // a second while a mail is written: a system to which a look costs time looks each few milliseconds, and says no in
    // between. The library goes on pumping for as long as this says so: where idle work counts among the messages and
    // a handler may ask for more of it without an end, say no some time all the same.
    virtual int MessageWaits() = 0;
    // Takes one waiting message and dispatches it; waits for one if there is none. 0: the program is to end.
    virtual int PumpMessage() = 0;
    // Work for idle times (updating menus, deleting what was put off). count is how often it was called since the
    // last message. It may be passed over when it was done a few milliseconds ago. Not 0: it wants to be called again.
    virtual int OnIdle(int count) = 0;

    // Shows the text until the user answers. owner may be null. style: an MB_ value. The result is the button
    // pressed (IDOK for the one of MB_OK).
    virtual int MessageBox(HWND owner, const CString& text, const CString& caption, unsigned int style) = 0;
    // Lets the user choose a path. owner may be null. IDOK: path is a full path in the form of this library (code
    // page 932, backslashes), and for saving the user has agreed to replace an existing file. Else IDCANCEL, and
    // path stays as it was.
    virtual int RunFileDialog(HWND owner, const FileDialogRequest& request, CString& path) = 0;

    // Waits until the descriptor is ready for one of events (kReadable, kWritable), and keeps the messages moving
    // meanwhile. A descriptor in error, or one that the peer has closed, counts as ready for all that was asked:
    // the read or write that follows tells. timeout is in milliseconds: 0 only looks, a negative one has no end.
    // Result: what is ready; 0 after timeout; -1 on failure, the number of which GetLastError tells. A signal
    // does not end the wait. This default looks at the descriptor first, and then in turn at the messages
    // (MessageWaits, PumpMessage) and at the descriptor, for which it waits kMessageStep at a time. A toolkit that
    // can watch a descriptor in its own loop does better; one that dispatches nothing may use PollSocket.
    virtual int WaitForSocket(int descriptor, int events, int timeout);

    // The installed system, the built-in one if there is none. That one draws nothing: dialogs stand, no message
    // ever waits, a message box answers IDOK, a file dialog IDCANCEL, and a wait for a socket is a plain wait.
    static CWindowSystem& Get();
    // Makes system, lent until the next Install, the one that Get gives; null brings the built-in one back. The
    // result is what was installed before, null for the built-in one. No dialog of this library may stand.
    static CWindowSystem* Install(CWindowSystem* system);

protected:
    static constexpr int kMessageStep = 50;  // milliseconds without a look at the messages; a press seems immediate

    // The wait of WaitForSocket without messages.
    static int PollSocket(int descriptor, int events, int timeout);
};

namespace platform {

// The user pressed the button, or chose the command, with that number in a dialog: IDCANCEL runs OnCancel, IDOK
// OnOK. Not 0: the dialog took it. A handle without an object is passed over with 0, so a late press does no harm.
MAILENGINE_API int DeliverCommand(HWND dialog, int id);
// The window is about to go. Runs its destroy handler and those of the dialogs and controls on it while the handles
// still stand, and then lets go of them all. A handle without an object, or one that was told before, is passed over.
MAILENGINE_API void DeliverDestroy(HWND window);
// The window lost the keyboard. A system may leave this out.
MAILENGINE_API void DeliverKillFocus(HWND window);

}  // namespace platform
