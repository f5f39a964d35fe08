#include <array>
#include <climits>
#include <set>
#include <string>
#include <vector>

#include <mailengine/parser/Addresses.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/Walk.h>

const int CEMailPerser::numOfHeaderFieldNames = 7;
const char* const CEMailPerser::headerFieldNames[] = {
    "From:", "To:", "Cc:", "Message-ID:", "References:", "Subject:", "Date:"};

namespace parser {
namespace {

constexpr std::size_t kRows = 7;
constexpr std::size_t kAddressRows = 3;
constexpr std::size_t kSubjectRow = 5;

}  // namespace

// One pass over the header fields of a message. A row without a target is passed over.
class CHeaderScan {
public:
    std::array<CStringArray*, kAddressRows> m_lists{};
    std::array<CString*, kRows - kAddressRows> m_values{};

    // The first field of each row, from the lines whose top does not lie behind bodyTop.
    void Read(std::string_view text, int bodyTop) {
        std::array<bool, kRows> done{};
        for (int top = 0; top <= bodyTop;) {
            const std::size_t row = RowAt(text, top);
            if (row < kRows && !done[row]) {
                ReadRow(text, top, row);
                done[row] = true;  // also where it could not be read
            }
            const int lineEnd = Find(text, kCrlf, top);
            if (lineEnd == -1) return;
            top = lineEnd + 2;
        }
    }

private:
    static std::string_view NameOfRow(std::size_t row) { return CEMailPerser::headerFieldNames[row]; }

    static std::size_t RowAt(std::string_view text, int top) {
        std::size_t row = 0;
        while (row < kRows && !StandsAtIgnoringCase(text, top, NameOfRow(row)))
            ++row;
        return row;
    }

    void ReadRow(std::string_view text, int top, std::size_t row) {
        const std::string_view name = NameOfRow(row).substr(0, NameOfRow(row).size() - 1);
        int next = 0;
        if (row < kAddressRows) {
            if (m_lists[row] != nullptr) ParseAddressField(text, top, name, *m_lists[row]);
        } else if (CString* const value = m_values[row - kAddressRows]; value != nullptr) {
            ParseFieldValue(text, top, name.size(), *value, next);
        }
    }
};

namespace {

// What the header of a message says.
struct Header {
    CStringArray from, to, cc;
    CString messageId, references, subject, date;
};

// Tests for MIME and walks the parts of a whole message.
int WalkMail(std::string_view text, const Findings& findings, Range& range) {
    CString version;
    int next = 0;
    if (!FindField(text, 0, "MIME-Version:", version, next) || version.View() != "1.0") return 0;
    CEntity mail(text);
    return WalkEntity(mail, next, findings, range);
}

// Where the header fields end for the header scan: where the walk said, or else at the first empty line.
int HeaderEnd(std::string_view text, const Range& range) {
    if (range.top != -1) return range.top;
    const int emptyLine = FindEmptyLine(text, 0);
    return emptyLine != -1 ? emptyLine : LengthOf(text);
}

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

void AddRecipients(const CStringArray& to, int bReply, CMailDoc& document) {
    ToAddresses known(document);
    CAddress address;
    for (int i = 0; i < to.GetSize(); ++i) {
        address.FromText(to.GetAt(i));
        if (known.Hold(address.GetMailAddress())) continue;
        if (bReply)
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
void ReferBack(const Header& header, CMailDoc& document) {
    if (header.messageId.IsEmpty()) return;
    document.SetInReplyTo(header.messageId);
    CString references = header.references;
    if (!references.IsEmpty()) references += "\r\n\t";
    references += header.messageId;
    document.SetReferences(references);
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

int ReadSubject(std::string_view text, int depth, CString& subject) {
    CStringArray unusedNames;
    CNewFiles noFiles(nullptr);
    Range range;
    if (!WalkMail(text, {nullptr, unusedNames, nullptr, noFiles, depth}, range)) return 0;
    CString found;
    CHeaderScan scan;
    scan.m_values[kSubjectRow - kAddressRows] = &found;
    scan.Read(text, HeaderEnd(text, range));
    subject = std::move(found);
    return 1;
}

}  // namespace parser

int CEMailPerser::Perse(const CString& text, const char* tempPath, CMailDoc& document, int bReply) {
    const std::string_view mail = text.View();
    if (mail.size() > INT_MAX) return 0;
    document.ClearToAddresses();
    document.ClearCcAddresses();
    document.ClearBccAddresses();

    CString body;
    CStringArray fileNames, filePaths;
    parser::CNewFiles files(bReply ? nullptr : tempPath);
    parser::Range range;
    const int result = parser::WalkMail(mail, {&body, fileNames, bReply ? nullptr : &filePaths, files}, range);
    if (result && !bReply) document.SetFiles(parser::PairFiles(filePaths, fileNames));
    if (result) document.SetBody(body);

    parser::Header header;
    PerseHeaderFields(text, parser::HeaderEnd(mail, range), range.end, header.from, header.to, header.cc,
                      header.messageId, header.references, header.subject, header.date);
    CString summary;
    MakeOriginalSummary(header.from, header.to, header.cc, header.subject, header.date, fileNames, summary);
    document.SetOriginalSummary(summary);
    if (bReply) parser::AnswerSenders(header.from, document);
    parser::AddRecipients(header.to, bReply, document);
    parser::AddCopies(header.cc, document);
    if (bReply) parser::ReferBack(header, document);
    document.SetSubject(header.subject);
    return result;
}

int CEMailPerser::GetSubject(const CString& text, CString& subject) {
    if (text.View().size() > INT_MAX) return 0;
    return parser::ReadSubject(text.View(), 0, subject);
}

int CEMailPerser::PerseHeaderFields(const CString& text, int bodyTop, int, CStringArray& from, CStringArray& to,
                                    CStringArray& cc, CString& messageId, CString& references, CString& subject,
                                    CString& date) {
    parser::CHeaderScan scan;
    scan.m_lists = {&from, &to, &cc};
    scan.m_values = {&messageId, &references, &subject, &date};
    scan.Read(parser::TextOf(text), bodyTop);
    return 1;
}

void CEMailPerser::MakeOriginalSummary(const CStringArray& from, const CStringArray& to, const CStringArray& cc,
                                       const CString& subject, const CString& date, const CStringArray& fileNames,
                                       CString& summary) {
    using parser::AppendLine;
    using parser::Join;
    AppendLine(summary, " From:    ", Join(from).View());
    AppendLine(summary, " To:      ", Join(to).View());
    if (cc.GetSize() > 0) AppendLine(summary, " Cc:      ", Join(cc).View());
    AppendLine(summary, " Date:    ", date.View());
    AppendLine(summary, " Subject: ", subject.View());
    if (fileNames.GetSize() > 0) AppendLine(summary, " File:    ", Join(fileNames).View());
}
