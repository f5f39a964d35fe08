// CRoundTrip: a document made of any bytes, written, read back and compared with what must survive. Random bytes make
// a test of it, a fuzzer's bytes a fuzz target. It makes no text that the format cannot carry; those have tests of
// their own.
#pragma once

#include <string>
#include <string_view>
#include <tests/FileBytes.h>
#include <tests/FixedSystem.h>
#include <tests/writer/MessageStreams.h>
#include <vector>

#include <mailengine/encoding/Language.h>
#include <mailengine/model/Recipients.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/writer/EMailWriter.h>

// Half-width kana have no place on the wire: they come back full-width.
inline CString ReadBack(const CString& text) {
    if (CLanguage::IsJapanese(text) == 0) return text;
    CString wire, back;
    CLanguage::SJIS_JIS(text, static_cast<unsigned int>(text.GetLength()), wire);
    CLanguage::JIS_SJIS(wire, static_cast<unsigned int>(wire.GetLength()), back);
    return back;
}

// The message that document gives, empty if it cannot be written.
inline CString WriteToMemory(const CMailDoc& document) {
    CMemoryStream stream;
    CProgressCallback progress("", 0, nullptr);
    CString error;
    const int written = CEMailWriter(&stream, document, progress).Write(error);
    return CString(written != 0 ? stream.Text() : std::string());
}

class CRoundTrip {
public:
    // sources and target are two empty folders, under the library's paths; source bytes decide all.
    CRoundTrip(std::string_view bytes, const CString& sources, const CString& target)
        : m_rest(bytes), m_sources(sources), m_target(target) {
        Fill();
    }

    // Writes, opens and answers. The result says what did not survive; empty: all did.
    std::string Run() {
        const CString message = WriteToMemory(m_document);
        m_lost.clear();
        CMailDoc opened, reply;
        Compare("open", CEMailPerser().Perse(message, m_target, opened, 0) != 0, 1);
        Compare("reply", CEMailPerser().Perse(message, nullptr, reply, 1) != 0, 1);
        CompareTexts(opened);
        CompareTexts(reply);
        CompareAddresses(opened, reply);
        CompareReferences(reply);
        CompareFiles(opened);
        return m_lost;
    }

private:
    enum Use : unsigned int { kBody = 1, kSubject = 2, kPlainName = 4, kJapaneseName = 8, kFileName = 16, kAll = 31 };
    struct Piece {
        std::string_view bytes;
        unsigned int uses;
    };
    struct Attachment {
        CString name;  // as the message gives it: of a file its name, of a mail its subject
        std::string content;
    };

    // A voiced mark stands in bodies alone: a word may be cut in front of it, and the two halves stay apart.
    static constexpr Piece kPieces[] = {
        {"a", kAll},
        {"Z0", kAll},
        {"-", kAll},
        {".", kAll},
        {"'", kAll},
        {"(", kAll},
        {"@", kAll},
        {"%41", kAll},
        {" ", kAll},
        {"=", kAll},
        {":", kBody | kSubject | kPlainName | kJapaneseName},
        {";", kBody | kSubject | kPlainName},
        {",", kBody | kSubject | kPlainName},
        {"\"", kBody | kSubject | kPlainName},
        {"\\", kBody | kSubject},
        {"<", kBody | kSubject},
        {"=?", kBody},
        {"?=", kBody},
        {"\r\n", kBody},
        {"\r\n.\r\n", kBody},
        {"\r\n--", kBody},
        {"\r\n----- Original Message -----\r\n", kBody},
        {"\t", kBody},
        {"\n", kBody},
        {"\x80", kBody},
        {"\xFF", kBody},
        {"0123456789012345678901234567890123456789", kBody | kSubject},
        {"\x82\xA0", kAll & ~kPlainName},          // あ
        {"\x95\x5C", kAll & ~kPlainName},          // 表, whose last byte is a backslash
        {"\x81\x7C", kAll & ~kPlainName},          // －, whose last byte is a vertical bar
        {"\xE0\x40\xEF\xFC", kAll & ~kPlainName},  // 漾 and the wire's last cell
        {"\xB1\xB6", kAll & ~kPlainName},          // ｱｶ
        {"\xCA", kAll & ~kPlainName},              // ﾊ
        {"\xDE", kBody},
        {"\xDF", kBody},  // the marks
    };
    static constexpr unsigned int kSizes[] = {0, 1, 2, 3, 53, 54, 55, 539, 540, 541, 1079, 1080, 1081};

    unsigned int Below(unsigned int limit) {
        if (m_rest.empty()) return 0;
        const unsigned int byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte % limit;
    }

    CString Text(Use use, unsigned int most, bool japanese = true) {
        CString text;
        for (unsigned int left = Below(most + 1); left > 0; --left) {
            const Piece& piece = kPieces[Below(std::size(kPieces))];
            if ((piece.uses & use) != 0 && (japanese || CLanguage::IsJapanese(CString(piece.bytes)) == 0))
                text += piece.bytes;
        }
        return text;
    }

    CAddress Address() {
        CString name;
        const unsigned int kind = Below(3);
        if (kind == 1) name = Text(kPlainName, 12);
        if (kind == 2) name = "\x8E\x52" + Text(kJapaneseName, 20) + "\x93\x63";  // 山...田
        CString address;
        address.Format("u%d@example.test", ++m_nAddresses);
        return CAddress("", name, address);
    }

    CString Subject() {
        CString subject = Text(kSubject, 30);
        if (CLanguage::IsJapanese(subject) != 0) return subject;
        subject.TrimLeft();
        subject.TrimRight();
        while (subject.Replace("=?", "") != 0) {
        }
        return subject;
    }

    void Fill() {
        m_document.SetFromAddress(Address());
        for (unsigned int left = Below(4); left > 0; --left)
            m_document.AddToAddress(Address());
        for (unsigned int left = Below(3); left > 0; --left)
            m_document.AddCcAddress(Address());
        m_document.SetReferences(Below(2) != 0 ? "<0@x>\r\n\t<1@x>" : "");
        m_document.SetSubject(Subject());
        const bool japanese = Below(3) != 0;
        m_document.SetDear(Text(kBody, 3, japanese));
        m_document.SetBody(Text(kBody, 60, japanese));
        m_document.SetSignature(Text(kBody, 3, japanese));
        m_document.SetUpperReplyFlg(static_cast<int>(Below(2)));
        for (unsigned int left = Below(4); left > 0; --left)
            Below(4) == 0 ? AttachMail(left == 1) : AttachFile(left == 1);
        m_document.SetFiles(m_files);
    }

    void Attach(const CString& fileName, const std::string& content) {
        const CString path = m_sources + "\\" + fileName;
        WriteWholeFile(platform::ToNativePath(path), content);
        m_files.push_back({path, ""});
    }

    void AttachFile(bool last) {
        std::string content(kSizes[last ? 1 + Below(std::size(kSizes) - 1) : Below(std::size(kSizes))], '\0');
        for (char& c : content)
            c = static_cast<char>(Below(256));
        CString name;
        name.Format("%d", static_cast<int>(m_files.size()));
        name += Text(kFileName, 12) + (Below(2) != 0 ? ".bin" : ".EML");
        while (name.Replace("=?", "") != 0) {
        }
        Attach(name, content);
        m_attachments.push_back({ReadBack(name), content});
    }

    // A line end stands between a mail and the delimiter of the next part, and goes with the mail.
    void AttachMail(bool last) {
        CMailDoc inner;
        inner.SetSubject(Subject());
        inner.SetBody(Text(kBody, 20));
        CString name;
        name.Format("%d.eml", static_cast<int>(m_files.size()));
        CString subject;
        inner.GetSubject(subject);
        const std::string content(WriteToMemory(inner).View());
        Attach(name, content);
        m_attachments.push_back({subject.IsEmpty() ? name : ReadBack(subject), content + (last ? "" : "\r\n")});
    }

    void Compare(const char* what, const CString& actual, const CString& expected) {
        if (actual == expected) return;
        m_lost += std::string(what) + ": " + Shown(std::string(actual.View())) +
                  "\n instead of: " + Shown(std::string(expected.View())) + "\n";
    }
    void Compare(const char* what, unsigned int actual, unsigned int expected) {
        if (actual != expected)
            m_lost += std::string(what) + ": " + std::to_string(actual) + ", not " + std::to_string(expected) + "\n";
    }
    static CString Line(const CAddress& one) { return one.GetDisplayName() + "<" + one.GetMailAddress() + ">\n"; }
    static CString Lines(const CMailDoc& document, const RecipientList& list) {
        CString lines;
        ForEachAddress(document, list, [&](const CAddress& address) { lines += Line(address); });
        return lines;
    }
    static CString To(const CMailDoc& document) { return Lines(document, kToList); }
    static CString Cc(const CMailDoc& document) { return Lines(document, kCcList); }

    void CompareTexts(const CMailDoc& actual) {
        CString text, expected;
        actual.GetSubject(text);
        m_document.GetSubject(expected);
        Compare("subject", text, ReadBack(expected));
        actual.GetBody(text);
        m_document.GetBodyWithLetter(expected);
        Compare("body", text, ReadBack(expected));
    }

    void CompareAddresses(const CMailDoc& opened, const CMailDoc& reply) {
        CAddress sender;
        m_document.GetFromAddress(sender);
        Compare("To", To(opened), ReadBack(To(m_document)));
        Compare("Cc", Cc(opened), ReadBack(Cc(m_document)));
        Compare("To of the reply", To(reply), ReadBack(Line(sender)));
        Compare("Cc of the reply", Cc(reply), ReadBack(To(m_document) + Cc(m_document)));
    }

    void CompareReferences(const CMailDoc& reply) {
        CString text, references;
        const CString id("<20261119103049.4660@pc.example.test>");
        reply.GetInReplyTo(text);
        Compare("In-Reply-To", text, id);
        m_document.GetReferences(references);
        reply.GetReferences(text);
        Compare("References", text, references.IsEmpty() ? id : "<0@x><1@x>\r\n\t" + id);
    }

    void CompareFiles(const CMailDoc& opened) {
        std::vector<CMailDoc::FileInfo> files;
        opened.GetFiles(files);
        Compare("number of files", static_cast<unsigned int>(files.size()),
                static_cast<unsigned int>(m_attachments.size()));
        for (std::size_t i = 0; i < files.size() && m_lost.empty(); ++i) {
            Compare("name", files[i].Name, m_attachments[i].name);
            Compare("content", CString(ReadWholeFile(platform::ToNativePath(files[i].Path))),
                    CString(m_attachments[i].content));
        }
    }

    const CFixedSystem m_system;
    std::string_view m_rest;
    const CString m_sources, m_target;
    CMailDoc m_document;
    int m_nAddresses = 0;
    std::vector<CMailDoc::FileInfo> m_files;
    std::vector<Attachment> m_attachments;
    std::string m_lost;
};
