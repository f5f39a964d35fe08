// CMailSendRecv: sends one document to its server (CMailDoc::SetSendServer), envelope and all. Runs on the caller's
// thread, the one of the user interface, to the end of the session. While it waits for the server, handlers of the host
// run inside it by the window system's messages; nothing but the progress dialog, which disables its parent, keeps one
// of them from sending again.
//
// The envelope (RFC 5321 3.3): the sender is FromAddress; the recipients are the To, Cc and Bcc addresses in that order
// and, with SenderBccFlg, the sender as the last one. The text goes out fit for the wire: dots at line tops doubled
// (RFC 5321 4.5.2), a bare CR or LF as CRLF (2.3.8).
//
// Texts are code page 932, or the server's own words. The document and the progress object stay the caller's. The
// caller who wants the progress dialog calls progress.Start before. A dialog that stands when the mail was not even
// opened on the server stays up, for the caller to close.
#pragma once

#include <mailengine/support/platform/base/Export.h>

class CMailDoc;
class CProgressCallback;
class CString;

class MAILENGINE_API CMailSendRecv {
public:
    CMailSendRecv() = delete;

    // Sends doc so that the recipients get either the whole mail or none. 1: the server took the mail; error is as it
    // was given. 0: it did not, and error says why: server, port or sender missing or unusable, an attachment that
    // cannot be opened (all before any connection), a command refused, a file or the connection that failed on the way,
    // a dialogue out of step (see CSmtp::Finish), the mail refused at the end of its data. error becomes empty where
    // the server gave no reason: it closed the connection, or there are more than 100 recipients.
    //
    // The user can cancel until the server has answered the end of the data; only the look-up of the server's name
    // cannot be stopped. The result is then 0, error is as it was given, and progress.UserCanceled() tells. The dialog
    // stands until the session is over, but a press during QUIT changes nothing; a cancel that was noticed before the
    // call counts too, and nothing is tried. A wait on the server ends at the limits of RFC 5321 4.5.3.2, with the text
    // of a socket that failed with ETIMEDOUT. When a wait for the verdict on the mail ends so, by either, the server
    // may still take it.
    static int SendWhole(const CMailDoc& doc, CProgressCallback& progress, CString& error);

    // Sends doc as far as it can be written. 1: the whole message was handed over, which is no promise that the server
    // took it; error is as it was given. 0: with error as above, but that a mail which fails on its way, an attachment
    // that is missing or a cancel end the data where they stand, so that the recipients get half a mail, or an empty
    // one. The dialog closes before the last data go out. Waits on the server last as long as it likes, and a cancel is
    // seen only when the writer goes on. A host that shows the result to a user wants SendWhole.
    static int Send(const CMailDoc& doc, CProgressCallback& progress, CString& error);

    // Always 0, during a Send too.
    static int IsSending();
    // Always 0, and nothing is touched: receiving mail is not part of this library.
    static int Receive(CMailDoc& doc, CProgressCallback& progress);
};
