// CEMailPerser: reads a stored Internet message (RFC 5322, MIME by RFC 2045 and 2046) into a CMailDoc, to open it with
// its attachments extracted to files, or to prepare a reply to it. It keeps no state: one object serves any number of
// parses. The rest of the library runs on the host's user-interface thread; a parse may run on any, with a document of
// its own, which belongs to one thread at a time. Two parses that extract into one folder keep apart by exclusive
// creation.
//
// The message is one CString with CRLF line ends; every offset is a byte count from the first byte of the text given,
// and -1 is "not found". A text of 2 GiB or more is refused. All searches stop at a NUL. Field values, names and the
// body come out as code page 932, but text in a charset other than ISO-2022-JP stays as the bytes it was.
#pragma once

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/MailFault.h>
#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

class MAILENGINE_API CEMailPerser {
public:
    CEMailPerser() = default;
    CEMailPerser(const CEMailPerser&) = default;
    CEMailPerser& operator=(const CEMailPerser&) = default;
    virtual ~CEMailPerser() = default;

    // Fills document from text. The three address lists are cleared first, nothing else is; what is filled goes through
    // the document's setters, so it comes back modified, and a host that shows a message as unchanged resets that.
    //
    // bReply 0 opens the message: its attachments become new files directly inside the folder tempPath (code page 932,
    // without a trailing backslash), the file list is replaced, and To and Cc are taken over, To without repeats. From,
    // Date, Message-ID and References do not reach the document's fields: From and Date stand in its summary alone,
    // and the others are to be had through PerseHeaderFields.
    //
    // bReply not 0 prepares a reply: nothing is written and tempPath may be null, the senders become To, the old To
    // joins Cc less who is in To already, and In-Reply-To and References are made from the old message (RFC
    // 5322 3.6.4). The rest is the host's: subject and body are those of the old message, without "Re:" and quote
    // marks, Reply-To is not looked at, the user's own address may stand in Cc, Cc keeps repeats, the file list stays
    // the document's, and the new mail's From is the host's to set.
    //
    // 1: the message was read. 0: it has no MIME-Version 1.0 or its parts could not be walked; addresses, subject and
    // summary are filled from the header all the same, body and file list are untouched, and files extracted before
    // the failure stay in the folder. A text too long gives 0 and leaves the document alone.
    int Perse(const CString& text, const char* tempPath, CMailDoc& document, int bReply);
    // The same, and fault takes the first thing that keeps the message from being read; kNone with 1. What it was
    // before is gone. A reply has fewer faults than an opening, which also looks at the data of attachments and
    // writes it. Costs no second walk and no copy of the message.
    int Perse(const CString& text, const char* tempPath, CMailDoc& document, int bReply, MailFault& fault);

    // The subject of the message, decoded; no file is written. 0: as Perse; subject then stays as it was.
    int GetSubject(const CString& text, CString& subject);

protected:
    // Entry and header fields.

    // Reads From, To, Cc, Message-ID, References, Subject and Date from the lines whose top does not lie behind
    // bodyTop; the first field of a name counts. Addresses are appended. bodyEnd is not looked at. Always 1.
    int PerseHeaderFields(const CString& text, int bodyTop, int bodyEnd, CStringArray& from, CStringArray& to,
                          CStringArray& cc, CString& messageId, CString& references, CString& subject, CString& date);
    // Appends the header as people read it above a quoted mail, a line for each field, to summary.
    void MakeOriginalSummary(const CStringArray& from, const CStringArray& to, const CStringArray& cc,
                             const CString& subject, const CString& date, const CStringArray& fileNames,
                             CString& summary);

    // Scanning. A line top is the start given or the offset behind a CRLF.

    // The line top at or behind start where fieldName, with its colon, stands, in any case of its letters; -1 if
    // there is none before the empty line that ends the block.
    int FindTopOfLine(const CString& text, int start, const CString& fieldName);
    // Reads the field whose line top is given: unfolded, trimmed and decoded. next, if not null, takes the line top
    // behind it. 0: the line has no CRLF; value stays, and next takes the offset given.
    // QUIRK: unfolding drops the white space of a fold and puts none in its place (RFC 5322 2.2.3 keeps it), so that
    // encoded words on two lines become neighbours.
    int PerseFieldValue(const CString& text, int topOfLine, const char* fieldName, CString& value, int* next);
    // FindTopOfLine, then PerseFieldValue. 0: not found, and value and next stay, or as PerseFieldValue.
    int FindField(const CString& text, int start, const char* fieldName, CString& value, int* next);
    // The CRLF of the empty line that ends the block around start; the text's last CRLF counts as one. -1: none.
    int FindEmptyLine(const CString& text, int start);
    // The next delimiter (RFC 2046 5.1.1): delimiter takes the offset of its CRLF, lineEnd that of the CRLF behind it
    // or the text's length, last, if not null, 1 for a closing delimiter and else 0. 0: none; delimiter takes -1, the
    // others stay.
    int FindNextBoundary(const CString& text, int start, const CString& boundary, int& delimiter, int& lineEnd,
                         int* last);

    // Values.

    // Splits the Content-Type field of the block at start into media type and parameters; text/plain in us-ascii
    // where there is none. next as in FindField. Always 1.
    int GetContentType(const CString& text, int start, CString& type, CString& parameters, int* next);
    // The decoded value of the first parameter of that name, without quotes; empty if there is none.
    // QUIRK: a ";" ends a value even between quotes (RFC 2045 5.1).
    CString GetAttrValue(const CString& parameters, const char* name);
    // The value of the pieces name*0*, name*1* and so on (RFC 2231 3, 4), joined, and decoded if it is ISO-2022-JP.
    CString GetAttrValue_MultiLine(const CString& parameters, const char* name);
    // Replaces the encoded words (RFC 2047) in value. QUIRK: white space between two words stays, and a word may
    // stand inside a token; an incomplete word loses its "=?".
    CString DecodeFieldValue(const CString& value);
    // Decodes text by the transfer encoding ("B" or "base64", "Q" or "quoted-printable", "H"; any other copies) and,
    // for the charset iso-2022-jp alone, to code page 932, into buffer, the caller's, of size bytes: the length of
    // text plus 1 is always enough. outputSize takes the number of bytes; a NUL follows them where there is room.
    // Never writes outside size. 0: the decoder refused, and the buffer holds what it wrote.
    int Decode(const CString& text, const CString& encoding, const CString& charset, unsigned char* buffer,
               unsigned int size, unsigned int& outputSize);

    // Addresses.

    // Reads the field as PerseFieldValue does and appends its addresses, one text each, to list. 0: list unchanged.
    int PerseAddressField(const CString& text, int topOfLine, const char* fieldName, CStringArray& list);
    // The next item of an address list: up to its comma, which a quoted string at its top hides. item is untrimmed on
    // its right. The result is where the next one starts, -1 if there is no item; item then stays.
    int NextAddress(const CString& list, int start, CString& item);

    // The walk. start lies behind the Content-Type field of the entity, in PerseMime at or in front of it. A null
    // filePaths collects names and writes nothing. All give 1, or 0 if the entity cannot be read; what was recorded
    // before stays. bodyTop takes where the header ends for PerseHeaderFields, bodyEnd where the walk goes on; either
    // may stay as it was. Entities nest to a limit, behind which they cannot be read.

    // Reads one entity by its Content-Type. A type without a route here gives no body and 1.
    int PerseMime(const CString& text, int start, const char* tempPath, CString& body, CStringArray& fileNames,
                  CStringArray* filePaths, int& bodyTop, int& bodyEnd);
    // multipart/related (RFC 2387): walks every part; the first text that is not empty is the body.
    int PerseRelated(const CString& text, int start, const char* tempPath, const CString& parameters, CString& body,
                     CStringArray& fileNames, CStringArray* filePaths, int& bodyTop, int& bodyEnd);
    // multipart/mixed (RFC 2046 5.1.3): the last text part without a name is the body, the others are attachments.
    int PerseMixed(const CString& text, int start, const char* tempPath, const CString& parameters, CString& body,
                   CStringArray& fileNames, CStringArray* filePaths, int& bodyTop, int& bodyEnd);
    // multipart/alternative (RFC 2046 5.1.4): the first text/plain part is the body.
    int PerseAlternative(const CString& text, int start, const CString& parameters, CString& body, int& bodyTop,
                         int& bodyEnd);
    // A text: up to the next delimiter of boundary, or to the end of text if boundary is empty.
    int PerseBody(const CString& text, int start, const CString& parameters, const CString& boundary, CString& body,
                  int& bodyTop, int& bodyEnd);

    // Extraction. The data ends at the next delimiter of boundary, or at the next empty line if boundary is empty. A
    // new file stands directly inside tempPath whatever the name says, under a name that was free; nothing that stands
    // there is replaced or followed. bodyTop and bodyEnd take the range of the data.

    // Records the entity under its cleaned "name" parameter and writes its decoded data. 0: it has no name, and
    // nothing is recorded; or its data has no end, cannot be decoded or cannot be written, and the name stays recorded.
    int PerseFile(const CString& text, int start, const char* tempPath, const CString& parameters,
                  const CString& boundary, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                  int& bodyEnd);
    // Records an attached mail under its subject, or its "name" where it has none, and writes it byte for byte to a
    // file that ends in ".eml". 0: as above, or it cannot be read as a mail itself; then nothing is recorded.
    int PerseAttachedMail(const CString& text, int start, const char* tempPath, const CString& parameters,
                          const CString& boundary, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                          int& bodyEnd);
};
