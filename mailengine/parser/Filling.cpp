#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <mailengine/parser/Filling.h>
#include <mailengine/parser/Walk.h>

namespace parser {
namespace {

std::vector<CMailDoc::FileInfo> PairFiles(const CStringArray& paths, const CStringArray& names) {
    std::vector<CMailDoc::FileInfo> files;
    files.reserve(static_cast<std::size_t>(names.GetSize()));
    for (int i = 0; i < names.GetSize(); ++i)
        files.push_back({paths.GetAt(i), names.GetAt(i)});
    return files;
}

// The mail addresses in the To list of a document. Many are asked for, so they stand sorted.
class ToAddresses {
public:
    explicit ToAddresses(const CMailDoc& document) : m_document(document) {}

    bool Hold(const CString& mailAddress) {
        for (; m_nSeen < m_document.GetToAddressSize(); ++m_nSeen)
            m_known.emplace(m_document.GetToAddress(m_nSeen)->GetMailAddress().View());
        return m_known.find(mailAddress.View()) != m_known.end();
    }

private:
    const CMailDoc& m_document;
    std::set<std::string, std::less<>> m_known;
    unsigned int m_nSeen = 0;
};

void AnswerSenders(const CStringArray& from, CMailDoc& document) {
    std::set<std::string, std::less<>> seen;
    CAddress address;
    for (int i = 0; i < from.GetSize(); ++i) {
        const CString text = from.GetAt(i);
        if (text.IsEmpty() || !seen.emplace(text.View()).second) continue;
        address.FromText(text);
        document.AddToAddress(address);
    }
}

void AddRecipients(const CStringArray& to, bool answers, CMailDoc& document) {
    ToAddresses known(document);
    CAddress address;
    for (int i = 0; i < to.GetSize(); ++i) {
        address.FromText(to.GetAt(i));
        if (known.Hold(address.GetMailAddress())) continue;
        if (answers)
            document.AddCcAddress(address);
        else
            document.AddToAddress(address);
    }
}

void AddCopies(const CStringArray& cc, CMailDoc& document) {
    CAddress address;
    for (int i = 0; i < cc.GetSize(); ++i) {
        address.FromText(cc.GetAt(i));
        document.AddCcAddress(address);
    }
}

// A reply names the mail that it answers, and all that went before it (RFC 5322 3.6.4).
void ReferBack(const CString& messageId, CString references, CMailDoc& document) {
    if (messageId.IsEmpty()) return;
    document.SetInReplyTo(messageId);
    if (!references.IsEmpty()) references += "\r\n\t";
    references += messageId;
    document.SetReferences(references);
}

CStringArray AddressesOf(std::optional<CString>& value) {
    CStringArray list;
    if (value) AppendAddresses(std::move(*value), list);
    return list;
}

CString TextOf(std::optional<CString>& value) {
    return value ? std::move(*value) : CString();
}

void FillHeader(Header header, bool answers, const CStringArray& fileNames, CMailDoc& document) {
    const CStringArray from = AddressesOf(header.from), to = AddressesOf(header.to), cc = AddressesOf(header.cc);
    const CString subject = TextOf(header.subject);
    CString summary;
    AppendSummary({from, to, cc, subject, TextOf(header.date), fileNames}, summary);
    document.SetOriginalSummary(summary);
    if (answers) AnswerSenders(from, document);
    AddRecipients(to, answers, document);
    AddCopies(cc, document);
    if (answers) ReferBack(TextOf(header.messageId), TextOf(header.references), document);
    document.SetSubject(subject);
}

void AppendLine(CString& summary, std::string_view label, std::string_view text) {
    summary += label;
    summary += text;
    summary += kCrlf;
}

CString Join(const CStringArray& list) {
    CString joined;
    for (int i = 0; i < list.GetSize(); ++i) {
        if (i > 0) joined += ';';
        joined += list.GetAt(i);
    }
    return joined;
}

}  // namespace

void AppendSummary(const SummaryFields& fields, CString& summary) {
    AppendLine(summary, " From:    ", Join(fields.from).View());
    AppendLine(summary, " To:      ", Join(fields.to).View());
    if (fields.cc.GetSize() > 0) AppendLine(summary, " Cc:      ", Join(fields.cc).View());
    AppendLine(summary, " Date:    ", fields.date.View());
    AppendLine(summary, " Subject: ", fields.subject.View());
    if (fields.fileNames.GetSize() > 0) AppendLine(summary, " File:    ", Join(fields.fileNames).View());
}

int FillDocument(std::string_view text, const char* folder, bool answers, CMailDoc& document, MailFault* fault) {
    document.ClearToAddresses();
    document.ClearCcAddresses();
    document.ClearBccAddresses();

    CString body;
    CStringArray fileNames, filePaths;
    CNewFiles files(answers ? nullptr : folder);
    CFaultLog faults(text, fault);
    Range range;
    const int result = WalkMail(text, {&body, fileNames, answers ? nullptr : &filePaths, files, faults}, range);
    faults.Close();
    if (result && !answers) document.SetFiles(PairFiles(filePaths, fileNames));
    if (result) document.SetBody(body);
    FillHeader(ReadHeader(text, range.top), answers, fileNames, document);
    return result;
}

}  // namespace parser
