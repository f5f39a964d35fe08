// CEMailWriter: renders one CMailDoc as one Internet message (RFC 822 header block, MIME 1.0 body) and pushes it piece
// by piece into a COutputStream. It never learns which stream it has: whoever made the stream opens and closes it. The
// message is never built whole. docs/message-format.md shows it byte by byte.
//
// The writer borrows the stream, the document and the progress object; all three must outlive it. One thread: Write
// runs to its end on the caller's, and CProgressCallback::Callback may run handlers of the host inside it.
#pragma once

#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>
#include <mailengine/writer/OutputStream.h>

class CFile;
class CProgressCallback;

class MAILENGINE_API CEMailWriter {
public:
    CEMailWriter(COutputStream* stream, const CMailDoc& doc, CProgressCallback& progress);
    CEMailWriter(const CEMailWriter& other) = default;
    CEMailWriter& operator=(const CEMailWriter&) = delete;
    virtual ~CEMailWriter() = default;

    // Writes the whole message. 1: it is on the stream, and error is as it was given. 0: a file, the stream or the user
    // (CProgressCallback::UserCanceled) stopped it; error takes a text for the user, but for the MIME-Version field and
    // a multipart's Content-Type, whose failure sets none. What went out before stays on the stream; only a missing
    // attachment stops the message before its first byte. A second call writes a second message with a new date.
    int Write(CString& error);

protected:
    using FileInfo = CMailDoc::FileInfo;

    // 1 if every file can be opened. Else 0, and error names all that cannot, each path with a CRLF.
    int CheckFiles(const std::vector<FileInfo>& files, CString& error);

    // The text of an address for a field (RFC 5322 3.4): the mail address alone, a quoted name in front of it, or a
    // Japanese name as encoded words.
    CString ConvAndEncodeAddress(const CAddress& address);
    // Writes one field of addresses, each behind the first on a continuation line of its own. 0: the list is empty
    // (nothing is written) or a write failed.
    int WriteAddressField(const char* name, const CStringArray& addresses);
    // Writes one field, with one WriteString, whose result it gives: name, ": ", value, each parameter on a
    // continuation line. The value goes out as it is.
    int WriteFieldValue(const char* name, const char* value);
    int WriteFieldValue(const char* name, const char* value, const CStringArray& params);

    // Everything behind the Subject field.
    int WriteMime(const CString& body, const std::vector<FileInfo>& files, CString& error);
    // The text part: its fields, the empty line and the text.
    int WriteBody(const CString& body, CString& error);
    // Everything behind the MIME-Version field of a message with attachments.
    int WriteMixed(const CString& body, const std::vector<FileInfo>& files, CString& error);
    // One attached mail (media type message/rfc822, RFC 2046 5.2.1): its fields, the empty line, the file byte for
    // byte.
    int WriteEMail(const FileInfo& file, CString& error);
    // One attached file: its fields, the empty line, the file as Base64.
    int WriteFile(const FileInfo& file, CString& error);
    // A boundary of 26 bytes from the time and the process number; two of one second are the same.
    CString MakeNewBoundary();

    // The text of a value for a field: value itself if it holds no Japanese, else encoded words (RFC 2047), each but
    // the first on a continuation line. prefixLength, at most 51, is the number of bytes in front of it on its first
    // line.
    CString EncodeFieldValue(const CString& value, int prefixLength);
    // Puts length bytes of Shift-JIS into out, which is empty on entry: as ISO-2022-JP where charset says so, under
    // Base64 unless encoding names another. Names are compared ignoring case. Always 1.
    int Encode(const unsigned char* data, unsigned int length, const CString& encoding, const CString& charset,
               CString& out);
    // Writes length bytes as Base64 lines of 72 characters, and reports 720 of them to progress after each ten lines
    // of this call. 0: a write failed or the user canceled; the lines before stay on the stream.
    int WriteBase64(const unsigned char* data, unsigned int length);

private:
    struct AttachmentKind;

    // Writes what stands between two pieces of a message: empty lines and delimiters.
    void WriteBetween(const CString& text);
    int WriteHeaderBlock();
    int WriteOriginFields();
    int WriteDestinationFields();
    int WriteIdentityFields();
    int WritePlainText(const CString& text);
    int WriteJapaneseText(const CString& text);
    int WriteBase64Line(const unsigned char* data, unsigned int length);
    int WriteAttachment(const FileInfo& file, const AttachmentKind& kind, CString& error);
    int WriteAttachmentFields(const FileInfo& file, const AttachmentKind& kind);
    int WriteFileContent(CFile& file);
    int WriteMailContent(CFile& file);

    COutputStream* m_pStream;
    const CMailDoc& m_doc;
    CProgressCallback& m_progress;
};
