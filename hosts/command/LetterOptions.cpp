#include "LetterOptions.h"

#include <mailengine/encoding/Language.h>

#include "Attachment.h"
#include "Failure.h"
#include "InputFile.h"

namespace {

constexpr char kMailer[] = "mailengine";
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// "--to 'name <a@b': ", in front of what is wrong with it.
std::string Quoted(const char* option, std::string_view text) {
    return std::string(option) + " '" + std::string(text) + "': ";
}

// Each option takes one value at a time, "[x]" and "{}" included: a value is never split or taken for a list.
CLI::Option* AddMany(CLI::App& command, const char* name, std::vector<std::string>& values, const char* help) {
    return command.add_option(name, values, help)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// Refuses what CAddress would read as something else than the user meant: what stands behind the ">" would be lost, and
// a second address beside a comma would go to nobody.
void CheckForm(std::string_view text, const char* option) {
    const std::size_t left = text.find('<');
    const std::size_t right = text.find('>');
    if (left == std::string_view::npos && right == std::string_view::npos) return;
    if (left == std::string_view::npos || right != text.size() - 1 || left > right) {
        throw CFailure(Quoted(option, text) + "give one address, as 'name <user@host>' or user@host; repeat " + option +
                       " for more");
    }
}

void CheckMailAddress(const CAddress& address, std::string_view text, const char* option) {
    CString message;
    if (!CAddress::CheckAddress(address.GetMailAddress(), message)) {
        throw CFailure(Quoted(option, text) + border::ToOutside(message.View()));
    }
    if (address.GetMailAddress().View().find_first_of(" ,;<>") != std::string_view::npos) {
        throw CFailure(Quoted(option, text) +
                       "a mail address holds no blank, comma, semicolon or angle bracket; repeat " + option +
                       " for each address");
    }
}

// A plain name goes out as a quoted string with its backslash as it is, which would quote what stands behind it (RFC
// 5322 3.2.4), at the end the closing quote.
void CheckPlainName(const CAddress& address, std::string_view text, const char* option) {
    const CString name = address.GetDisplayName();
    if (CLanguage::IsJapanese(name) || name.View().find('\\') == std::string_view::npos) return;
    throw CFailure(Quoted(option, text) + "a backslash in a plain name cannot be carried; leave it out");
}

}  // namespace

void CLetterOptions::AddTo(CLI::App& command) {
    AddAddressesTo(command);
    AddTextsTo(command);
    AddMany(command, "--attach", m_strAttachments, "A file to attach; repeat for more. A .eml goes in as a mail")
        ->type_name("FILE");
    command.add_option("--mailer", m_strMailer, "The name of the mail program, plain ASCII")->type_name("NAME");
    command.add_flag("--sender-bcc", m_bSenderBcc, "A blind copy goes to the sender too");
    command.add_flag("--upper-reply", m_bUpperReply, "Closing and signature stand above the quoted mail");
    command.add_flag("--replace", m_bReplace, "Put 〓 for a character that a Japanese mail cannot carry");
}

void CLetterOptions::AddAddressesTo(CLI::App& command) {
    constexpr char kAddress[] = "ADDRESS";
    command.add_option("--from", m_strFrom, "The sender: '名前 <user@host>' or user@host")->type_name(kAddress);
    command.add_option("--reply-to", m_strReplyTo, "Where replies go")->type_name(kAddress);
    AddMany(command, "--to", m_strTo, "A recipient; repeat for more")->type_name(kAddress);
    AddMany(command, "--cc", m_strCc, "A recipient of a copy; repeat for more")->type_name(kAddress);
    AddMany(command, "--bcc", m_strBcc, "One more, who stands in the Bcc field; every recipient can read that field")
        ->type_name(kAddress);
}

void CLetterOptions::AddTextsTo(CLI::App& command) {
    command.add_option("--subject", m_strSubject, "The subject, one line")->type_name("TEXT");
    command.add_option("--dear", m_strDear, "The salutation")->type_name("TEXT");
    command.add_option("--greeting", m_strGreeting, "The opening greeting")->type_name("TEXT");
    CLI::Option* body = command.add_option("--body", m_strBody, "The body")->type_name("TEXT");
    command.add_option("--body-file", m_strBodyFile, "A file that holds the body; - reads standard input")
        ->type_name("FILE")
        ->excludes(body);
    command.add_option("--closing", m_strClosing, "The closing words")->type_name("TEXT");
    command.add_option("--signature", m_strSignature, "The signature")->type_name("TEXT");
}

void CLetterOptions::Fill(CMailDoc& doc) const {
    FillAddresses(doc);
    FillLetter(doc);
    FillBody(doc);
    FillAttachments(doc);
    // The field goes out as it is, without an encoded word.
    const std::string mailer = m_strMailer.value_or(kMailer);
    for (const char byte : mailer) {
        if (static_cast<unsigned char>(byte) > 0x7E) throw CFailure(Quoted("--mailer", mailer) + "give plain ASCII");
    }
    doc.SetMailerName(LineOf(mailer, "--mailer"));
    if (m_bSenderBcc) doc.SetSenderBccFlg(1);
    if (m_bUpperReply) doc.SetUpperReplyFlg(1);
}

void CLetterOptions::CheckTarget(const COutputTarget& target) const {
    for (const std::string& path : m_strAttachments)
        CheckIsNotTarget(path, target);
}

CString CLetterOptions::LineOf(const std::string& text, const char* option) const {
    return border::ToInside(text, border::Extent::Line, Missing(), option);
}

CString CLetterOptions::LetterOf(const std::string& text, const std::string& what) const {
    return border::ToInside(text, border::Extent::Letter, Missing(), what);
}

CAddress CLetterOptions::AddressOf(const std::string& text, const char* option) const {
    const CString inside = LineOf(text, option);
    const std::string_view trimmed = Trimmed(inside.View());
    CheckForm(Trimmed(text), option);
    CAddress address;
    address.FromText(CString(trimmed));
    CheckMailAddress(address, Trimmed(text), option);
    CheckPlainName(address, Trimmed(text), option);
    DropQuotes(address);
    return address;
}

std::vector<CAddress> CLetterOptions::AddressesOf(const Texts& texts, const char* option) const {
    std::vector<CAddress> addresses;
    for (const std::string& text : texts)
        addresses.push_back(AddressOf(text, option));
    return addresses;
}

void CLetterOptions::FillAddresses(CMailDoc& doc) const {
    if (m_strFrom) doc.SetFromAddress(AddressOf(*m_strFrom, "--from"));
    if (m_strReplyTo) doc.SetReplyAddress(AddressOf(*m_strReplyTo, "--reply-to"));
    const bool added = doc.AddToAddresses(AddressesOf(m_strTo, "--to")) &&
                       doc.AddCcAddresses(AddressesOf(m_strCc, "--cc")) &&
                       doc.AddBccAddresses(AddressesOf(m_strBcc, "--bcc"));
    if (!added) throw CFailure("there is no memory for the addresses; give fewer");
}

void CLetterOptions::FillLetter(CMailDoc& doc) const {
    if (m_strSubject) doc.SetSubject(LineOf(*m_strSubject, "--subject"));
    if (m_strDear) doc.SetDear(LetterOf(*m_strDear, "--dear"));
    if (m_strGreeting) doc.SetGreeting(LetterOf(*m_strGreeting, "--greeting"));
    if (m_strClosing) doc.SetClosing(LetterOf(*m_strClosing, "--closing"));
    if (m_strSignature) doc.SetSignature(LetterOf(*m_strSignature, "--signature"));
}

void CLetterOptions::FillBody(CMailDoc& doc) const {
    if (m_strBody) doc.SetBody(LetterOf(*m_strBody, "--body"));
    if (!m_strBodyFile) return;
    std::string text = ReadWhole(*m_strBodyFile, border::kMaxTextBytes);
    // Editors of other systems put the mark in front of UTF-8.
    if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
    doc.SetBody(LetterOf(text, *m_strBodyFile == "-" ? "standard input" : *m_strBodyFile));
}

void CLetterOptions::FillAttachments(CMailDoc& doc) const {
    if (m_strAttachments.empty()) return;
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    for (const std::string& path : m_strAttachments)
        files.push_back(AttachmentOf(path));
    doc.SetFiles(files);
}

void DropQuotes(CAddress& address) {
    const CString name = address.GetDisplayName();
    const std::string_view view = name.View();
    if (view.size() >= 2 && view.front() == '"' && view.back() == '"') {
        address.SetDisplayName(CString(view.substr(1, view.size() - 2)));
    }
}
