// CMailSendRecv: sends one document to its server (CMailDoc::SetSendServer), envelope and all. Runs on the caller's
// thread, the one of the user interface, to the end of the session. While it waits for the server, handlers of the host
// run inside it by the window system's messages; nothing but the progress dialog, which disables its parent, keeps one
// of them from sending again.
//
// The envelope (RFC 5321 3.3): the sender is FromAddress; the recipients are the To, Cc and Bcc addresses in that order
// and, with SenderBccFlg, the sender as the last one. The text goes out fit for the wire: dots at line tops doubled
// (RFC 5321 4.5.2), a bare CR or LF as CRLF (2.3.8). A Bcc list, and SenderBccFlg, show in the message that all get.
//
// A text about a failure is either the library's own, code page 932, or the server's words: these are its reply as it
// came, raw bytes of any charset, of one line or several, codes and CRLFs included, so it ends in CRLF. Where both
// stand in one text a CRLF is between them and the library's come first.
//
// The document and the progress object stay the caller's. The caller who wants the progress dialog calls progress.Start
// before. A dialog that stands when the mail was not even opened on the server stays up, for the caller to close.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

class CMailDoc;
class CProgressCallback;
class CStringArray;

class MAILENGINE_API CMailSendRecv {
public:
    CMailSendRecv() = delete;

    // What became of a mail.
    enum Outcome {
        kNotTaken,  // nobody gets it
        kTaken,     // the server answers for it now (RFC 5321 4.2.5, 6.1)
        kUnknown,   // all of it went out, but no verdict came: sending it again may double it
    };
    struct Result {
        Outcome outcome = kNotTaken;
        // A sentence for the user, and the server's words or what the system said. Empty for kTaken, and for kNotTaken
        // where the user cancelled; never else.
        CString text;
        // The code of the reply that refused the mail, 400 to 599, else 0. RFC 5321 4.2.1: below 500 a later try may
        // work. RFC 4954 6, RFC 3207 4: 530, 534 and 538 ask for a login or encryption, which this library does not
        // have; the host can name the way through this machine's mail system.
        int replyCode = 0;
        // The number under which the connection failed, else 0: an errno, ETIMEDOUT for a limit among them, or, below
        // 0, what the resolver said about the server's name.
        int systemError = 0;
    };

    // Sends doc so that its recipients, and blindRecipients, mail addresses that the message does not show, get either
    // the whole mail or none, and each is named once, however many lists have it. Nothing is tried where the result can
    // be seen before: a cancel was noticed, server, port, sender or recipients are missing or cannot be sent, there are
    // more than 100 recipients, an attachment cannot be opened. Replies are put together as RFC 5321 4.2.1 has them, up
    // to 64 KiB each; each command is judged by its own, and a dialogue out of step gives the mail up before its end.
    // One recipient refused: nobody gets the mail.
    //
    // Waits end at the limits of RFC 5321 4.5.3.2, and when the user cancels; only the look-up of the server's name
    // cannot be stopped. The dialog stands until the session is over. A cancel before the end of the data takes the
    // mail back, one while the verdict is awaited leaves it unknown, and one during QUIT ends the session at once and
    // changes nothing: go by the result, not by progress.UserCanceled().
    static Result SendWhole(const CMailDoc& doc, const CStringArray& blindRecipients, CProgressCallback& progress);
    // The same without blind recipients, for who needs no more than a yes. 1: kTaken; error is as it was given. 0:
    // error takes the text, unless that is empty.
    static int SendWhole(const CMailDoc& doc, CProgressCallback& progress, CString& error);

    // Sends a message that is written already, as SendWhole sends a document: of envelope it takes server, port, sender
    // and recipients, and none of its contents. message goes out as it stands, but for dots doubled at line tops (RFC
    // 5321 4.5.2) and a bare CR or LF, which becomes CRLF (2.3.8); its last line end is that of the final dot, and is
    // put there where it is missing. Bytes above 7F and lines of more than 998 bytes go out too, though a server need
    // not take them (RFC 5321 2.4, 4.5.3.1.6); with a NUL nothing is tried. progress counts the message's bytes.
    static Result SendMessage(const CMailDoc& envelope, const CString& message, CProgressCallback& progress);

    // Sends doc as far as it can be written. 1: the whole message was handed over, which is no promise that the server
    // took it; error is as it was given. 0: error says why: server, port or sender missing or unusable (before any
    // connection), a command refused, a file or the connection that failed on the way; error becomes empty where the
    // server gave no reason, because it closed the connection, answered by fewer than 3 bytes, or there are more than
    // 100 recipients. A mail that fails on its way, an attachment that is missing and a cancel end the data where they
    // stand, so that the recipients get half a mail, or an empty one. One read of at most 512 bytes is taken for one
    // reply, so the server's words may be cut anywhere. The dialog closes before the last data go out. Waits on the
    // server last as long as it likes, and a cancel is seen only when the writer goes on. A host that shows the result
    // to a user wants SendWhole.
    static int Send(const CMailDoc& doc, CProgressCallback& progress, CString& error);

    // Always 0, during a Send too.
    static int IsSending();
    // Always 0, and nothing is touched: receiving mail is not part of this library.
    static int Receive(CMailDoc& doc, CProgressCallback& progress);
};
