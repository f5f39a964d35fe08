#include <algorithm>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/gateway/entities/Fields.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Answer.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/PartLimit.h>
#include <hostkit/letter/StoredMail.h>
#include <hostkit/letter/answer/Identifiers.h>
#include <hostkit/letter/answer/Recipients.h>

#include <mailengine/parser/EMailPerser.h>

namespace hostkit {

namespace {

constexpr std::string_view kCrlf = "\r\n";
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

// A mail that names no thread but the one mail that it answers gives a thread of both (RFC 5322 3.6.4). The gateway has
// seen to that in what it rewrote.
std::string AnsweredBefore(const StoredMail& mail, const HeaderValues& header) {
    if (!header.references.IsEmpty() || mail.Gateway().changed) return "";
    std::size_t bodyTop = 0;
    const gateway::Header fields = gateway::ReadHeader(mail.ForParser().View(), bodyTop);
    const gateway::Field* const field = fields.Find("In-Reply-To");
    const std::string value = field == nullptr ? "" : gateway::Unfold(field->raw);
    return std::count(value.begin(), value.end(), '<') == 1 ? value : "";
}

void CleanReferences(const StoredMail& mail, const HeaderValues& header, CMailDoc& doc) {
    CString value;
    doc.GetInReplyTo(value);
    doc.SetInReplyTo(CString(PlainBytes(value.View())));
    doc.GetReferences(value);
    doc.SetReferences(CString(FoldedIdentifiers(AnsweredBefore(mail, header) + std::string(value.View()))));
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
CString QuotedMail(const StoredMail& mail, const HeaderValues& header, Carrier& carrier, CMailDoc& doc) {
    CString body;
    doc.GetBody(body);
    CString quoted =
        SummaryOf(header, NamesOf(mail, carrier), [&](std::string_view value) { return carrier.LineOf(value); });
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

std::vector<std::string> OwnOf(const Letter& letter, const AnswerOptions& options) {
    std::vector<std::string> own = options.own;
    if (letter.from) own.push_back(MailAddressIn(*letter.from, Field::From));
    return own;
}

std::string TextOf(const CAddress& address) {
    const std::string mailAddress = FromCodePage(address.GetMailAddress().View());
    const std::string name = FromCodePage(address.GetDisplayName().View());
    return name.empty() ? mailAddress : name + " <" + mailAddress + '>';
}

std::vector<std::string> TextsOf(const std::vector<CAddress>& addresses) {
    std::vector<std::string> texts;
    texts.reserve(addresses.size());
    for (const CAddress& address : addresses)
        texts.push_back(TextOf(address));
    return texts;
}

std::optional<std::string> ValueOf(const CMailDoc& doc, void (CMailDoc::*value)(CString&) const) {
    CString text;
    (doc.*value)(text);
    if (text.IsEmpty()) return std::nullopt;
    return FromCodePage(text.View());
}

}  // namespace

std::vector<std::string> PrepareAnswer(std::string message, const Letter& letter, CMailDoc& doc,
                                       const AnswerOptions& options) {
    const StoredMail mail(std::move(message), options.strict, options.name);
    std::string reason = mail.Refusal();
    MailFault fault;
    if (reason.empty() && !CEMailPerser().Perse(mail.ForParser(), nullptr, doc, 1, fault)) reason = FaultText(fault);
    if (!reason.empty()) throw Failure(FailureKind::Message, {Field::None, options.name}, reason);
    const HeaderValues header = HeaderOf(mail.ForParser());
    Carrier carrier(mail);
    const CString quoted = QuotedMail(mail, header, carrier, doc);
    std::vector<std::string> warnings;
    SetRecipients(mail, header, options.audience, OwnOf(letter, options), doc, warnings);
    CleanSubject(mail, doc);
    CleanReferences(mail, header, doc);
    doc.SetBody("");
    letter.Fill(doc);
    DropRepeated(doc);
    CString answer;
    doc.GetBody(answer);
    SetAnswerBody(doc, answer, quoted);
    if (carrier.Lost() > 0)
        warnings.push_back(CountedWords(
            carrier.Lost(), "{1} character of the answered mail is 〓 in the answer: a Japanese mail cannot carry it",
            "{1} characters of the answered mail are 〓 in the answer: a Japanese mail cannot carry them"));
    return warnings;
}

PreparedAnswer AnswerOf(std::string message, const Letter& letter, const AnswerOptions& options) {
    CMailDoc doc;
    PreparedAnswer answer{letter, PrepareAnswer(std::move(message), letter, doc, options)};
    answer.letter.to = TextsOf(AddressesOf(doc, doc.GetToAddressSize(), &CMailDoc::GetToAddress));
    answer.letter.cc = TextsOf(AddressesOf(doc, doc.GetCcAddressSize(), &CMailDoc::GetCcAddress));
    answer.letter.subject = ValueOf(doc, &CMailDoc::GetSubject);
    answer.letter.body = ValueOf(doc, &CMailDoc::GetBody);
    answer.letter.inReplyTo = ValueOf(doc, &CMailDoc::GetInReplyTo);
    answer.letter.references = ValueOf(doc, &CMailDoc::GetReferences);
    return answer;
}

}  // namespace hostkit
