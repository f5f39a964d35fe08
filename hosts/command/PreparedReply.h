// PreparedReply: what a host does to the document of a reply between Perse and the user. Decoded values of the answered
// mail can hold CR, LF and NUL, and stand in charsets that a Japanese mail does not carry. Stateless; one thread.
#pragma once

#include <mailengine/model/MailDoc.h>

// Makes doc, which Perse prepared from a mail, fit to be written: no value of that mail can add a header field to the
// reply or a command to the dialogue that sends it, and all its text can be carried. The subject gets its "Re: ".
// Addresses that could not be sent to are left out, with a line on stderr for each.
void CleanPreparedReply(CMailDoc& doc);

// The old mail as the reply shows it: its summary, and its body with "> " on each line. Lines end in CRLF, the last
// one too. doc is as Perse prepared it.
CString QuotedMail(const CMailDoc& doc);

// Sets the body of the reply to answer, the user's, and quoted. With the document's UpperReplyFlg the answer stands
// above, and the line that GetBodyWithLetter looks for between them; else below.
void SetReplyBody(CMailDoc& doc, const CString& answer, const CString& quoted);
