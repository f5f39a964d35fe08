// CMailDoc: one mail: the letter in its parts, the attachments, the addresses, the references of a reply, the mailer's
// name and the server to send through. A host fills one and has it written or sent; the parser fills one from a
// message. All text is code page 932. A document belongs to one thread at a time; it has no lock and is not copied.
//
// A getter assigns the field to its argument; a setter stores what it gets, validates nothing and cannot fail. Where
// a line says "modifies", the operation sets the modified flag to 1.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <mailengine/model/Address.h>
#include <mailengine/support/platform/base/Document.h>
#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/base/PtrArray.h>
#include <mailengine/support/platform/text/String.h>

class CFileDialog;
class CWnd;

class MAILENGINE_API CMailDoc : public CDocument {
public:
    // One attachment.
    struct FileInfo {
        // Full path of the file, code page 932 with backslashes; what the writer opens and sends.
        CString Path;
        // The name that the message gave it; for people, never a path. The writer does not look at it.
        CString Name;
    };

    // What kind of document the host means; the library only keeps it. The host casts its own values.
    enum class Type : std::int32_t { kNone = 0 };

    CMailDoc();
    // Runs ClearAll, so the directory TempPath goes with the document.
    ~CMailDoc() override;

    // A new document on the heap, to be deleted by the caller; null if there is no memory.
    static CMailDoc* Create();
    // The same through the framework's class record, without Init.
    static CObject* CreateObject();
    // Does nothing. Always 1.
    int Init();

    const CRuntimeClass* GetRuntimeClass() const override;
    static const CRuntimeClass classCMailDoc;
    // Does nothing: a document is not stored through an archive.
    void Serialize(CArchive& archive) override;
    // Empty: a document handles no window messages.
    const AFX_MSGMAP* GetMessageMap() const override;

    Type GetType() const { return m_type; }
    void SetType(Type type);  // modifies

    // Summary of the header of the mail that this document was read from; the parser writes it.
    void GetOriginalSummary(CString& summary) const { summary = m_originalSummary; }
    void SetOriginalSummary(const CString& summary);  // modifies

    // Subject, one line.
    void GetSubject(CString& subject) const { subject = m_subject; }
    void SetSubject(const CString& subject);  // modifies

    // The letter: salutation, opening greeting, body, closing words, signature. Lines end in CRLF. In a reply the body
    // may hold the quoted mail too (GetBodyWithLetter).
    void GetDear(CString& dear) const { dear = m_dear; }
    void SetDear(const CString& dear);  // modifies
    void GetGreeting(CString& greeting) const { greeting = m_greeting; }
    void SetGreeting(const CString& greeting);  // modifies
    void GetBody(CString& body) const { body = m_body; }
    unsigned int GetBodySize() const;   // bytes
    void SetBody(const CString& body);  // modifies
    void GetClosing(CString& closing) const { closing = m_closing; }
    void SetClosing(const CString& closing);  // modifies
    void GetSignature(CString& signature) const { signature = m_signature; }
    void SetSignature(const CString& signature);  // modifies

    // How the line begins that a quoted mail stands under.
    static constexpr char kOriginalMessage[] = "----- Original Message";

    // The text that the message carries: the parts that are not empty, in their order. Salutation and greeting have an
    // empty line behind them; closing and signature have one in front, even where nothing stands before. With
    // UpperReplyFlg the body is cut in front of the first CRLF with kOriginalMessage behind it: closing and
    // signature come behind the reply, the quoted mail last. No CRLF is added at the end.
    void GetBodyWithLetter(CString& text) const;

    // The attachments in the order of the message; the vector is copied both ways.
    void GetFiles(std::vector<FileInfo>& files) const { files = m_files; }
    void SetFiles(const std::vector<FileInfo>& files);  // modifies

    // The sender (From), and the address for replies (Reply-To).
    void GetFromAddress(CAddress& address) const { address = m_fromAddress; }
    void SetFromAddress(const CAddress& address) { m_fromAddress = address; }
    void GetReplyAddress(CAddress& address) const { address = m_replyAddress; }
    void SetReplyAddress(const CAddress& address) { m_replyAddress = address; }

    // The To addresses. index must be below the size. The address is lent: it is valid until the list is cleared or
    // the document destroyed. An add appends a copy; 0: there is no memory, the list keeps what it had. The forms for
    // many skip null entries, stop at the first failure and keep what was added; the arrays stay the caller's.
    unsigned int GetToAddressSize() const { return Size(m_toAddresses); }
    const CAddress* GetToAddress(unsigned int index) const { return At(m_toAddresses, index); }
    int AddToAddress(const CAddress& address);                   // modifies
    int AddToAddresses(const CPtrArray& addresses);              // of CAddress*; modifies, even if it added nothing
    int AddToAddresses(const std::vector<CAddress>& addresses);  // modifies, even if it added nothing
    void ClearToAddresses();                                     // the modified flag stays as it is

    // The Cc addresses, by the same rules; the CPtrArray form modifies only if it added something.
    unsigned int GetCcAddressSize() const { return Size(m_ccAddresses); }
    const CAddress* GetCcAddress(unsigned int index) const { return At(m_ccAddresses, index); }
    int AddCcAddress(const CAddress& address);
    int AddCcAddresses(const CPtrArray& addresses);
    int AddCcAddresses(const std::vector<CAddress>& addresses);
    void ClearCcAddresses();

    // The Bcc addresses, by the rules of Cc. They stand in the message too, on every way out.
    unsigned int GetBccAddressSize() const { return Size(m_bccAddresses); }
    const CAddress* GetBccAddress(unsigned int index) const { return At(m_bccAddresses, index); }
    int AddBccAddress(const CAddress& address);
    int AddBccAddresses(const CPtrArray& addresses);
    int AddBccAddresses(const std::vector<CAddress>& addresses);
    void ClearBccAddresses();

    // Message identifier of the mail that this one answers, with its angle brackets, and the value of the References
    // field (RFC 5322 3.6.4), folded or not.
    void GetInReplyTo(CString& inReplyTo) const { inReplyTo = m_inReplyTo; }
    void SetInReplyTo(const CString& inReplyTo);  // modifies
    void GetReferences(CString& references) const { references = m_references; }
    void SetReferences(const CString& references);  // modifies

    // Not 0: the sender gets a blind copy.
    int GetSenderBccFlg() const { return m_senderBccFlg; }
    void SetSenderBccFlg(int senderBccFlg) { m_senderBccFlg = senderBccFlg; }
    // Not 0: the reply stands above the quoted mail.
    int GetUpperReplyFlg() const { return m_upperReplyFlg; }
    void SetUpperReplyFlg(int upperReplyFlg) { m_upperReplyFlg = upperReplyFlg; }

    // Value of the X-Mailer field.
    void GetMailerName(CString& mailerName) const { mailerName = m_mailerName; }
    void SetMailerName(const CString& mailerName) { m_mailerName = mailerName; }

    // The SMTP server, a name or an address, and its port; a new document has no server and port 25.
    void GetSendServer(CString& server, std::int32_t& port) const;
    void SetSendServer(const CString& server, std::int32_t port);

    // Makes the directory path and has the document own it, with every file directly in it: they go with ClearAll or
    // the document. Non-zero on success. 0: path exists or cannot be made (its parent is not made), and the document
    // keeps the directory that it had. A directory owned before stays on disk and is the document's no more. The path
    // is kept as it is given: a relative one means the process's directory at each use, so that after a change of that
    // directory the document would look for, and empty, another one of this name. Give a full path.
    int SetTempPath(const char* path);
    void GetTempPathA(CString& path) const { path = m_tempPath; }

    // Empties the address lists, deletes the files of TempPath and the directory, empties the subject, the letter and
    // the attachments, and sets the modified flag to 0. What cannot be deleted stays on disk without a word, as do
    // subdirectories. Type, summary, sender, reply address, references, flags, mailer and server stay.
    void ClearAll();

    // The amount, in bytes, that progress counts against (CProgressCallback::Start): the body and the attachments as
    // Base64, by their sizes here: an estimate of what is written. Letter parts and header fields are not counted. It
    // ends at the largest unsigned int.
    unsigned int GetMailSize() const;

    // Saves the document as a message file, under the user's eyes: runs dialog, writes to the path that it gives, shows
    // progress over parent, which is disabled meanwhile, and complains in a message box over it. Handlers of the host
    // run meanwhile. 0: an argument is null, or the file cannot be made, also because it is an attachment of this very
    // document. 1 in all other cases: the user chose no file; the message was saved, and the modified flag is 0; the
    // user cancelled or writing failed, and then the file is deleted and the flag is as it was.
    // A file that stood at the path is emptied before the first byte is written, so a failure or a cancel loses it, and
    // the name with it (a device stays). A host that must not lose it writes into a new file beside it that takes its
    // place when whole: hostkit::SaveLetter does.
    int SaveAs(CWnd* parent, CFileDialog* dialog);

protected:
    // Called by the framework when a document begins anew; the fields are not touched. 1: ready.
    int OnNewDocument() override;

private:
    static unsigned int Size(const CPtrArray& list) { return static_cast<unsigned int>(list.GetSize()); }
    static const CAddress* At(const CPtrArray& list, unsigned int index) {
        return static_cast<const CAddress*>(list.GetAt(static_cast<int>(index)));
    }
    void SetText(CString& field, const CString& text);
    int Append(CPtrArray& list, const CAddress& address);
    int AppendAll(CPtrArray& list, const CPtrArray& addresses);
    int AppendAll(CPtrArray& list, const std::vector<CAddress>& addresses);
    static void Clear(CPtrArray& list);
    void RemoveTempPath();
    bool IsAttached(const CString& path) const;

    Type m_type = Type::kNone;
    CString m_originalSummary;
    CString m_subject;
    CString m_dear;
    CString m_greeting;
    CString m_body;
    CString m_closing;
    CString m_signature;
    std::vector<FileInfo> m_files;
    CAddress m_fromAddress;
    CAddress m_replyAddress;
    CPtrArray m_toAddresses;  // of CAddress*, made and deleted by the document, never null
    CPtrArray m_ccAddresses;
    CPtrArray m_bccAddresses;
    CString m_inReplyTo;
    CString m_references;
    int m_senderBccFlg = 0;
    int m_upperReplyFlg = 0;
    CString m_mailerName;
    CString m_sendServer;
    std::int32_t m_sendPort;
    CString m_tempPath;
};
