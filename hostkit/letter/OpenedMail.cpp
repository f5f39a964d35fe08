#include <algorithm>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/FileName.h>
#include <hostkit/files/MediaTypes.h>
#include <hostkit/files/TargetFolder.h>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/gateway/Glance.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/OpenedMail.h>
#include <hostkit/letter/StoredMail.h>
#include <memory>
#include <optional>
#include <utility>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

namespace {

namespace fs = std::filesystem;

constexpr char kMailExtension[] = ".eml";

CString ValueOf(const CMailDoc& doc, void (CMailDoc::*value)(CString&) const) {
    CString text;
    (doc.*value)(text);
    return text;
}

// Fills an opened mail from what was read of a stored one.
class Filler {
public:
    Filler(const StoredMail& mail, OpenedMail& opened) : m_mail(mail), m_opened(opened) {}

    void FillHeader() {
        m_header = HeaderOf(m_mail.ForParser());
        m_opened.from = MailboxesOf(m_header.from);
        m_opened.replyTo = m_mail.IsPassed() ? m_mail.Gateway().replyTo : MailboxesOf(m_header.replyTo);
        m_opened.date = TextOf(m_header.date);
        m_opened.messageId = TextOf(m_header.messageId);
        m_opened.references = TextOf(m_header.references);
        m_opened.header = HeaderTextOf(m_mail.Gateway().changed ? m_mail.Block() : m_header.block.View());
        (void)std::exchange(m_header.block, CString());
    }

    // What is taken over is dropped there: a list of addresses takes many times its field, and a body is most of a
    // mail.
    void FillDocument(std::unique_ptr<CMailDoc> doc) {
        m_opened.subject = TextOf(ValueOf(*doc, &CMailDoc::GetSubject));
        m_opened.to = MailboxesOf(*doc, doc->GetToAddressSize(), &CMailDoc::GetToAddress);
        doc->ClearToAddresses();
        m_opened.cc = MailboxesOf(*doc, doc->GetCcAddressSize(), &CMailDoc::GetCcAddress);
        doc->ClearCcAddresses();
        const CString body = ValueOf(*doc, &CMailDoc::GetBody);
        doc.reset();
        m_opened.body = TextOf(body);
    }

    void FillSummary() {
        CStringArray names;
        for (const OpenedMail::File& file : m_opened.files)
            names.SetAtGrow(names.GetSize(), CString(Shown(file.name)));
        m_opened.summary = SummaryOf(m_header, names, [this](std::string_view value) {
                               return CString(Shown(m_mail.TextOf(value)));
                           }).View();
    }

    void FillGateway() {
        const Passed& passed = m_mail.Gateway();
        m_opened.gateway = passed.changed;
        m_opened.replaced = passed.characters.Replaced();
        m_opened.alternatives = passed.alternatives;
        for (const Notice& notice : passed.notices)
            m_opened.warnings.push_back(notice.Sentence());
    }

private:
    std::string TextOf(const CString& value) const { return m_mail.TextOf(value.View()); }

    Mailbox MailboxOf(const CAddress& address) const {
        return {TextOf(address.GetDisplayName()), TextOf(address.GetMailAddress())};
    }

    std::vector<Mailbox> MailboxesOf(const CMailDoc& doc, unsigned int size, AddressAt addressAt) const {
        std::vector<Mailbox> read;
        read.reserve(size);
        for (unsigned int i = 0; i < size; ++i)
            read.push_back(MailboxOf(*(doc.*addressAt)(i)));
        return read;
    }

    std::vector<Mailbox> MailboxesOf(const CStringArray& texts) const {
        std::vector<Mailbox> read;
        read.reserve(static_cast<std::size_t>(texts.GetSize()));
        for (int i = 0; i < texts.GetSize(); ++i) {
            CAddress address;
            address.FromText(texts.GetAt(i));
            read.push_back(MailboxOf(address));
        }
        return read;
    }

    const StoredMail& m_mail;
    HeaderValues m_header;
    OpenedMail& m_opened;
};

// An attached mail is known by the end of the file that the library made for it, which its name lacks.
std::string FileNameOf(const std::string& name, const CMailDoc::FileInfo& info, const fs::path& made) {
    const bool isMail = made.extension() == kMailExtension || made.filename() == kMailExtension;
    if (!isMail || made.filename() == platform::ToNativePath(info.Name)) return name;
    return (name.empty() ? "_" : name) + kMailExtension;
}

// Lists the attachments that the parser made, under the names that people see; target, if there is one, takes them.
class Lister {
public:
    Lister(const StoredMail& mail, TargetFolder* target) : m_mail(mail), m_pTarget(target) {}

    std::vector<OpenedMail::File> List(const CMailDoc& doc) {
        std::vector<CMailDoc::FileInfo> infos;
        doc.GetFiles(infos);
        std::vector<OpenedMail::File> files;
        files.reserve(infos.size());
        for (const CMailDoc::FileInfo& info : infos)
            files.push_back(Listed(info, files.size()));
        return files;
    }

private:
    OpenedMail::File Listed(const CMailDoc::FileInfo& info, std::size_t at) {
        const fs::path made = platform::ToNativePath(info.Path);
        const std::vector<PassedFile>& known = m_mail.Gateway().files;
        OpenedMail::File file;
        file.original = at < known.size() ? known[at].original : m_mail.TextOf(info.Name.View());
        file.name = at < known.size() ? known[at].name : FileNameOf(file.original, info, made);
        std::error_code gone;
        const std::uintmax_t size = fs::file_size(made, gone);
        file.size = gone ? 0 : size;
        if (m_pTarget != nullptr) file.path = m_pTarget->Take(made.filename(), file.name);
        if (!m_mail.IsPassed())
            file.name = file.original;
        else
            file.name = m_pTarget != nullptr ? file.path.filename().native() : Unique(file.name);
        const std::string declared = at < known.size() ? known[at].type : "";
        const bool saysNothing = declared.find('/') == std::string::npos || declared == "application/octet-stream";
        file.type = saysNothing ? TypeForName(file.name) : declared;
        return file;
    }

    std::string Unique(const std::string& name) {
        const std::string clean = CleanFileName(name);
        return m_names.Take(clean.empty() ? "_" : clean);
    }

    const StoredMail& m_mail;
    TargetFolder* m_pTarget;
    UniqueFileNames m_names;
};

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The fault of a message that can be read to its end, but for the attachments, is the folder's.
std::string Read(const StoredMail& mail, const fs::path& folder, CMailDoc& doc, std::vector<OpenedMail::File>& files) {
    std::optional<TargetFolder> target;
    if (!folder.empty()) target.emplace(folder);
    std::optional<WorkFolder> work;
    CString place;  // a text alone needs none
    if (target)
        place = target->Work().LibraryPath();
    else if (mail.Gateway().mayHoldFiles)
        place = work.emplace().LibraryPath();
    MailFault fault;
    if (!CEMailPerser().Perse(mail.ForParser(), place, doc, 0, fault)) return FaultText(fault, folder);
    files = Lister(mail, target ? &*target : nullptr).List(doc);
    if (target) target->Keep();
    return "";
}

}  // namespace

OpenedMail OpenMail(std::string message, const OpenOptions& options) {
    StoredMail mail(std::move(message), options.strict);
    OpenedMail opened;
    auto doc = std::make_unique<CMailDoc>();
    opened.fault = mail.Refusal();
    opened.isMessage = !mail.ForParser().IsEmpty() && !mail.IsNone();
    if (!opened.isMessage) {
        if (opened.fault.empty()) opened.fault = Words("is empty");
        return opened;
    }
    if (opened.fault.empty()) opened.fault = Read(mail, options.folder, *doc, opened.files);
    Filler filler(mail, opened);
    filler.FillHeader();
    mail.Drop();
    filler.FillDocument(std::move(doc));
    filler.FillSummary();
    filler.FillGateway();
    return opened;
}

OpenedSubject OpenSubject(std::string message, bool strict) {
    if (!strict && IsAscii(std::string_view(message).substr(0, EndOfHeader(message))))
        message.resize(EndOfHeader(message));  // other bytes may be of the charset that the letter names
    const StoredMail mail(std::move(message), strict);
    if (!mail.Gateway().refusal.empty()) return {"", mail.Gateway().refusal};
    CString subject;
    if (CEMailPerser().GetSubject(mail.ForParser(), subject)) return {mail.TextOf(subject.View()), ""};
    CMailDoc rest;  // the header may hold one all the same
    MailFault fault;
    CEMailPerser().Perse(mail.ForParser(), nullptr, rest, 1, fault);
    return {mail.TextOf(ValueOf(rest, &CMailDoc::GetSubject).View()), FaultText(fault)};
}

}  // namespace hostkit
