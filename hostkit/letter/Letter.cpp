#include <hostkit/attachments/Attachment.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Letter.h>
#include <hostkit/letter/answer/Identifiers.h>
#include <new>

namespace hostkit {

namespace {

using Text = std::optional<std::string>;

std::vector<CAddress> AddressesIn(const std::vector<std::string>& texts, Missing missing, Field field) {
    std::vector<CAddress> addresses;
    addresses.reserve(texts.size());
    for (const std::string& text : texts)
        addresses.push_back(AddressOf(text, missing, field));
    return addresses;
}

void FillAddresses(const Letter& letter, CMailDoc& doc) {
    if (letter.from) doc.SetFromAddress(AddressOf(*letter.from, letter.missing, Field::From));
    if (letter.replyTo) doc.SetReplyAddress(AddressOf(*letter.replyTo, letter.missing, Field::ReplyTo));
    const bool added = doc.AddToAddresses(AddressesIn(letter.to, letter.missing, Field::To)) &&
                       doc.AddCcAddresses(AddressesIn(letter.cc, letter.missing, Field::Cc)) &&
                       doc.AddBccAddresses(AddressesIn(letter.bcc, letter.missing, Field::Bcc));
    if (!added) throw std::bad_alloc();
}

void FillTexts(const Letter& letter, CMailDoc& doc) {
    const auto fill = [&](const Text& text, void (CMailDoc::*set)(const CString&), const Place& where) {
        if (text) (doc.*set)(ToCodePage(*text, Extent::Letter, letter.missing, where));
    };
    if (letter.subject) doc.SetSubject(ToCodePage(*letter.subject, Extent::Line, letter.missing, {Field::Subject}));
    fill(letter.dear, &CMailDoc::SetDear, {Field::Dear});
    fill(letter.greeting, &CMailDoc::SetGreeting, {Field::Greeting});
    fill(letter.body, &CMailDoc::SetBody, {Field::Body, letter.bodyFile});
    fill(letter.closing, &CMailDoc::SetClosing, {Field::Closing});
    fill(letter.signature, &CMailDoc::SetSignature, {Field::Signature});
}

void FillThread(const Letter& letter, CMailDoc& doc) {
    if (letter.inReplyTo) doc.SetInReplyTo(CString(PlainBytes(*letter.inReplyTo)));
    if (letter.references) doc.SetReferences(CString(FoldedIdentifiers(*letter.references)));
}

// The field goes out as it is, without an encoded word.
void FillMailer(const std::string& mailer, CMailDoc& doc) {
    for (const char byte : mailer) {
        if (static_cast<unsigned char>(byte) > 0x7E)
            throw Failure(FailureKind::Value, {Field::Mailer, "'" + mailer + "'"}, Words("give plain ASCII"));
    }
    doc.SetMailerName(ToCodePage(mailer, Extent::Line, Missing::Refuse, {Field::Mailer}));
}

void FillAttachments(const std::vector<std::filesystem::path>& attachments, CMailDoc& doc) {
    if (attachments.empty()) return;
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    for (const std::filesystem::path& path : attachments)
        files.push_back(AttachmentOf(path));
    doc.SetFiles(files);
}

}  // namespace

void Letter::Fill(CMailDoc& doc) const {
    FillAddresses(*this, doc);
    FillTexts(*this, doc);
    FillThread(*this, doc);
    FillAttachments(attachments, doc);
    FillMailer(mailer, doc);
    if (senderBcc) doc.SetSenderBccFlg(1);
    if (upperReply) doc.SetUpperReplyFlg(1);
}

}  // namespace hostkit
