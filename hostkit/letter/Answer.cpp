#include <algorithm>
#include <hostkit/characters/MailText.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Answer.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/PartLimit.h>
#include <new>

#include <mailengine/parser/EMailPerser.h>

namespace hostkit {

namespace {

constexpr std::string_view kCrlf = "\r\n";
constexpr std::string_view kFold = "\r\n\t";
constexpr std::string_view kReplyPrefix = "Re: ";
constexpr std::string_view kOriginalMessage = "\r\n----- Original Message -----\r\n";

CString CarriedLine(std::string_view text) {
    return Carried(text, Extent::Line);
}

bool HasReplyPrefix(std::string_view subject) {
    return subject.size() >= 3 && (subject[0] == 'R' || subject[0] == 'r') &&
           (subject[1] == 'E' || subject[1] == 'e') && subject[2] == ':';
}

void CleanSubject(CMailDoc& doc) {
    CString subject;
    doc.GetSubject(subject);
    subject = CarriedLine(subject.View());
    doc.SetSubject(HasReplyPrefix(subject.View()) ? subject : CString(kReplyPrefix) + subject);
}

// Printable ASCII alone: these values go out as they are, without an encoded word.
std::string PlainBytes(std::string_view text) {
    std::string plain;
    for (const char byte : text) {
        if (byte >= ' ' && byte <= '~') plain += byte;
    }
    const std::size_t first = plain.find_first_not_of(' ');
    return first == std::string::npos ? "" : plain.substr(first, plain.find_last_not_of(' ') - first + 1);
}

// A parsed field has lost its folds, and its identifiers stand side by side; each gets a line again.
void AppendFolded(std::string& folded, std::string_view entries) {
    const std::string plain = PlainBytes(entries);
    if (!folded.empty() && !plain.empty()) folded += kFold;
    char before = '\0';
    for (const char ch : plain) {
        if (before == '>' && ch == '<') folded += kFold;
        folded += ch;
        before = ch;
    }
}

void CleanReferences(CMailDoc& doc) {
    CString value;
    doc.GetInReplyTo(value);
    doc.SetInReplyTo(CString(PlainBytes(value.View())));
    doc.GetReferences(value);
    std::string folded;
    std::string_view rest = value.View();
    for (std::size_t fold = 0; fold != std::string_view::npos;) {
        fold = rest.find(kFold);
        AppendFolded(folded, rest.substr(0, fold));
        if (fold != std::string_view::npos) rest.remove_prefix(fold + kFold.size());
    }
    doc.SetReferences(CString(std::move(folded)));
}

// What CheckAddress lets pass can still be two addresses, or end the path of an SMTP command (RFC 5321 4.1.2).
bool CanBeSentTo(const CString& mailAddress) {
    CString message;
    if (!CAddress::CheckAddress(mailAddress, message)) return false;
    for (const char byte : mailAddress.View()) {
        if (byte <= ' ' || byte > '~' || std::string_view("<>,;()").find(byte) != std::string_view::npos) return false;
    }
    return true;
}

// A backslash would go out undoubled, and one at the end of a plain name would swallow the quote behind it.
CString CleanName(const CAddress& parsed) {
    CAddress address(parsed);
    DropQuotes(address);
    CString name = CarriedLine(address.GetDisplayName().View());
    name.Replace('\\', '/');
    return name;
}

std::vector<CAddress> CleanAddresses(const std::vector<CAddress>& parsed, std::vector<std::string>& warnings) {
    std::vector<CAddress> cleaned;
    for (const CAddress& address : parsed) {
        const CString mailAddress = CarriedLine(address.GetMailAddress().View());
        if (CanBeSentTo(mailAddress)) {
            cleaned.emplace_back("", CleanName(address), mailAddress);
        } else if (!mailAddress.IsEmpty()) {
            warnings.push_back("the address '" + LineShown(address.GetMailAddress().View()) +
                               "' of the answered mail is left out: it cannot be sent to");
        }
    }
    return cleaned;
}

// Appends the lines of text with prefix in front of each, and CRLF.
void AppendLines(CString& quoted, std::string_view text, std::string_view prefix) {
    while (!text.empty()) {
        const std::size_t end = text.find(kCrlf);
        quoted += prefix;
        quoted += text.substr(0, end);
        quoted += kCrlf;
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + kCrlf.size());
    }
}

std::string_view WithoutLastLineEnds(std::string_view text) {
    while (text.ends_with(kCrlf))
        text.remove_suffix(kCrlf.size());
    return text;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& ch : lower) {
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    }
    return lower;
}

void DropOwn(const std::vector<std::string>& own, std::vector<CAddress>& addresses) {
    std::erase_if(addresses, [&](const CAddress& address) {
        const std::string mailAddress = Lower(address.GetMailAddress().View());
        return std::any_of(own.begin(), own.end(), [&](const std::string& one) { return Lower(one) == mailAddress; });
    });
}

void SetRecipients(const AnswerOptions& options, CMailDoc& doc, std::vector<std::string>& warnings) {
    std::vector<CAddress> to =
        CleanAddresses(AddressesOf(doc, doc.GetToAddressSize(), &CMailDoc::GetToAddress), warnings);
    std::vector<CAddress> cc =
        CleanAddresses(AddressesOf(doc, doc.GetCcAddressSize(), &CMailDoc::GetCcAddress), warnings);
    const bool hasSender = !to.empty();
    DropOwn(options.own, to);
    DropOwn(options.own, cc);
    if (hasSender && to.empty())
        to.swap(cc);
    else if (options.audience == Audience::Sender)
        cc.clear();
    doc.ClearToAddresses();
    doc.ClearCcAddresses();
    if (!doc.AddToAddresses(to) || !doc.AddCcAddresses(cc)) throw std::bad_alloc();
}

// The old mail as the answer shows it: its summary, which becomes that of doc too, and its body with "> " on each line.
// Lines end in CRLF, the last one too. doc is as Perse prepared it.
CString QuotedMail(const CString& mail, CMailDoc& doc) {
    CString body;
    doc.GetBody(body);
    CString quoted = SummaryOf(HeaderOf(mail), AttachmentNames(mail), CarriedLine);
    doc.SetOriginalSummary(quoted);
    quoted += kCrlf;
    const CString carried = Carried(body.View(), Extent::Letter);
    AppendLines(quoted, WithoutLastLineEnds(carried.View()), "> ");
    return quoted;
}

// With the document's UpperReplyFlg the answer stands above, and the line that GetBodyWithLetter looks for between
// them; else below.
void SetAnswerBody(CMailDoc& doc, const CString& answer, const CString& quoted) {
    CString body;
    if (doc.GetUpperReplyFlg()) {
        body += answer;
        body += kOriginalMessage;
        body += quoted;
    } else {
        body += quoted;
        if (!answer.IsEmpty()) body += kCrlf;
        body += answer;
    }
    doc.SetBody(body);
}

}  // namespace

std::vector<std::string> PrepareAnswer(const CString& mail, const Letter& letter, CMailDoc& doc,
                                       const AnswerOptions& options) {
    if (HasTooManyParts(mail)) throw Failure(FailureKind::Message, {Field::None, options.name}, TooManyPartsText());
    MailFault fault;
    if (!CEMailPerser().Perse(mail, nullptr, doc, 1, fault))
        throw Failure(FailureKind::Message, {Field::None, options.name}, FaultText(fault));
    const CString quoted = QuotedMail(mail, doc);
    std::vector<std::string> warnings;
    SetRecipients(options, doc, warnings);
    CleanSubject(doc);
    CleanReferences(doc);
    doc.SetBody("");
    letter.Fill(doc);
    CString answer;
    doc.GetBody(answer);
    SetAnswerBody(doc, answer, quoted);
    return warnings;
}

}  // namespace hostkit
