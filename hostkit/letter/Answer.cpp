#include <algorithm>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Answer.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/PartLimit.h>
#include <hostkit/letter/StoredMail.h>
#include <new>

#include <mailengine/parser/EMailPerser.h>

namespace hostkit {

namespace {

constexpr std::string_view kCrlf = "\r\n";
constexpr std::string_view kFold = "\r\n\t";
constexpr std::string_view kReplyPrefix = "Re: ";
constexpr std::string_view kGeta = "〓";

std::size_t GetasIn(std::string_view utf8) {
    std::size_t getas = 0;
    for (std::size_t at = 0; (at = utf8.find(kGeta, at)) != std::string_view::npos; at += kGeta.size())
        ++getas;
    return getas;
}

// Values of the answered mail on their way into the answer.
class Carrier {
public:
    explicit Carrier(const StoredMail& mail) : m_mail(mail), m_nLost(mail.Gateway().characters.Replaced()) {}

    CString Letter(const CString& value) { return Counted(m_mail.TextOf(value.View()), Extent::Letter); }
    CString Line(const std::string& utf8) { return Counted(utf8, Extent::Line); }
    CString LineOf(std::string_view value) { return Line(m_mail.TextOf(value)); }

    // How many characters 〓 stands for in what was carried, and in the mail as it was read.
    std::size_t Lost() const { return m_nLost; }

private:
    CString Counted(const std::string& utf8, Extent extent) {
        CString carried = Carried(utf8, extent);
        const std::size_t getas = GetasIn(FromCodePage(carried.View()));
        m_nLost += getas - std::min(getas, GetasIn(utf8));
        return carried;
    }

    const StoredMail& m_mail;
    std::size_t m_nLost;
};

bool HasReplyPrefix(std::string_view subject) {
    return subject.size() >= 3 && (subject[0] == 'R' || subject[0] == 'r') &&
           (subject[1] == 'E' || subject[1] == 'e') && subject[2] == ':';
}

void CleanSubject(const StoredMail& mail, CMailDoc& doc) {
    CString subject;
    doc.GetSubject(subject);
    subject = Carrier(mail).LineOf(subject.View());
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

// A parsed field has lost its folds, and its identifiers stand side by side, or a blank apart; each gets a line again.
void AppendFolded(std::string& folded, std::string_view entries) {
    const std::string plain = PlainBytes(entries);
    if (!folded.empty() && !plain.empty()) folded += kFold;
    char before = '\0';
    for (const char ch : plain) {
        if (before == '>' && ch == ' ') continue;
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
CString CleanName(const std::string& displayName) {
    CString name = Carried(displayName, Extent::Line);
    name.Replace('\\', '/');
    return name;
}

std::vector<CAddress> CleanAddresses(const std::vector<Mailbox>& parsed, std::vector<std::string>& warnings) {
    std::vector<CAddress> cleaned;
    for (const Mailbox& mailbox : parsed) {
        const CString mailAddress = Carried(mailbox.address, Extent::Line);
        if (CanBeSentTo(mailAddress)) {
            cleaned.emplace_back("", CleanName(mailbox.name), mailAddress);
        } else if (!mailAddress.IsEmpty()) {
            warnings.push_back("the address '" + Shown(mailbox.address) +
                               "' of the answered mail is left out: it cannot be sent to");
        }
    }
    return cleaned;
}

std::vector<Mailbox> MailboxesOf(const StoredMail& mail, std::vector<CAddress> addresses) {
    std::vector<Mailbox> mailboxes;
    for (CAddress& address : addresses) {
        DropQuotes(address);
        mailboxes.push_back(
            {mail.TextOf(address.GetDisplayName().View()), mail.TextOf(address.GetMailAddress().View())});
    }
    return mailboxes;
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

using MailAddresses = std::vector<std::string>;

void Drop(const MailAddresses& dropped, std::vector<CAddress>& addresses) {
    std::erase_if(addresses, [&](const CAddress& address) {
        const std::string mailAddress = Lower(address.GetMailAddress().View());
        return std::any_of(dropped.begin(), dropped.end(),
                           [&](const std::string& one) { return Lower(one) == mailAddress; });
    });
}

// Who wrote the mail, or who the answers go to instead; nobody of a mail of the user's own.
std::vector<CAddress> ToWhom(const StoredMail& mail, const MailAddresses& own, std::vector<CAddress> senders,
                             std::vector<std::string>& warnings) {
    const bool hasSender = !senders.empty();
    Drop(own, senders);
    if (hasSender && senders.empty()) return {};
    std::vector<CAddress> instead;
    if (mail.IsPassed()) instead = CleanAddresses(mail.Gateway().replyTo, warnings);
    Drop(own, instead);
    return instead.empty() ? senders : instead;
}

void SetRecipients(const StoredMail& mail, const AnswerOptions& options, CMailDoc& doc,
                   std::vector<std::string>& warnings) {
    const auto cleaned = [&](unsigned int size, AddressAt addressAt) {
        return CleanAddresses(MailboxesOf(mail, AddressesOf(doc, size, addressAt)), warnings);
    };
    const std::vector<CAddress> senders = cleaned(doc.GetToAddressSize(), &CMailDoc::GetToAddress);
    std::vector<CAddress> cc = cleaned(doc.GetCcAddressSize(), &CMailDoc::GetCcAddress);
    std::vector<CAddress> to = ToWhom(mail, options.own, senders, warnings);
    Drop(options.own, cc);
    if (!senders.empty() && to.empty())
        to.swap(cc);
    else if (options.audience == Audience::Sender)
        cc.clear();
    if (mail.IsPassed() && !mail.Gateway().replyTo.empty())  // a list can stand in To and in Reply-To
        for (const CAddress& address : to)
            Drop({std::string(address.GetMailAddress().View())}, cc);
    doc.ClearToAddresses();
    doc.ClearCcAddresses();
    if (!doc.AddToAddresses(to) || !doc.AddCcAddresses(cc)) throw std::bad_alloc();
}

CStringArray NamesOf(const StoredMail& mail, Carrier& carrier) {
    CStringArray names;
    if (mail.Gateway().changed) {
        for (const PassedFile& file : mail.Gateway().files)
            names.SetAtGrow(names.GetSize(), carrier.Line(file.name));
        return names;
    }
    names = AttachmentNames(mail.ForParser());
    for (int i = 0; i < names.GetSize(); ++i)
        names.SetAtGrow(i, carrier.LineOf(names.GetAt(i).View()));
    return names;
}

// The old mail as the answer shows it: its summary, which becomes that of doc too, and its body with "> " on each line.
// Lines end in CRLF, the last one too. doc is as Perse prepared it.
CString QuotedMail(const StoredMail& mail, Carrier& carrier, CMailDoc& doc) {
    CString body;
    doc.GetBody(body);
    CString quoted = SummaryOf(HeaderOf(mail.ForParser()), NamesOf(mail, carrier),
                               [&](std::string_view value) { return carrier.LineOf(value); });
    doc.SetOriginalSummary(quoted);
    quoted += kCrlf;
    const CString carried = carrier.Letter(body);
    AppendLines(quoted, WithoutLastLineEnds(carried.View()), "> ");
    return quoted;
}

// With the document's UpperReplyFlg the answer stands above, and the line that GetBodyWithLetter looks for between
// them; else below.
void SetAnswerBody(CMailDoc& doc, const CString& answer, const CString& quoted) {
    CString body;
    if (doc.GetUpperReplyFlg()) {
        body += answer;
        body += kCrlf;
        body += CMailDoc::kOriginalMessage;
        body += " -----\r\n";
        body += quoted;
    } else {
        body += quoted;
        if (!answer.IsEmpty()) body += kCrlf;
        body += answer;
    }
    doc.SetBody(body);
}

}  // namespace

std::vector<std::string> PrepareAnswer(std::string message, const Letter& letter, CMailDoc& doc,
                                       const AnswerOptions& options) {
    const StoredMail mail(std::move(message), options.strict, options.name);
    std::string reason = mail.Refusal();
    MailFault fault;
    if (reason.empty() && !CEMailPerser().Perse(mail.ForParser(), nullptr, doc, 1, fault)) reason = FaultText(fault);
    if (!reason.empty()) throw Failure(FailureKind::Message, {Field::None, options.name}, reason);
    Carrier carrier(mail);
    const CString quoted = QuotedMail(mail, carrier, doc);
    std::vector<std::string> warnings;
    SetRecipients(mail, options, doc, warnings);
    CleanSubject(mail, doc);
    CleanReferences(doc);
    doc.SetBody("");
    letter.Fill(doc);
    CString answer;
    doc.GetBody(answer);
    SetAnswerBody(doc, answer, quoted);
    if (carrier.Lost() > 0)
        warnings.push_back(std::to_string(carrier.Lost()) +
                           " characters of the answered mail are 〓 in the answer: a Japanese mail cannot carry them");
    return warnings;
}

}  // namespace hostkit
