#include <filesystem>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/TargetFolder.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/OpenedMail.h>
#include <hostkit/letter/PartLimit.h>
#include <optional>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace hostkit {

namespace {

constexpr char kMailExtension[] = ".eml";

std::string TextOf(const CString& value) {
    return hostkit::TextOf(value.View());
}

MailAddress MailAddressOf(const CAddress& address) {
    return {TextOf(address.GetDisplayName()), TextOf(address.GetMailAddress())};
}

std::vector<MailAddress> MailAddressesOf(const CMailDoc& doc, unsigned int size, AddressAt addressAt) {
    std::vector<MailAddress> read;
    read.reserve(size);
    for (unsigned int i = 0; i < size; ++i)
        read.push_back(MailAddressOf(*(doc.*addressAt)(i)));
    return read;
}

std::vector<MailAddress> MailAddressesOf(const CStringArray& texts) {
    std::vector<MailAddress> read;
    read.reserve(static_cast<std::size_t>(texts.GetSize()));
    for (int i = 0; i < texts.GetSize(); ++i) {
        CAddress address;
        address.FromText(texts.GetAt(i));
        read.push_back(MailAddressOf(address));
    }
    return read;
}

CString ShownLine(std::string_view value) {
    return CString(LineShown(value));
}

void FillFromHeader(const HeaderValues& header, OpenedMail& opened) {
    opened.from = MailAddressesOf(header.from);
    opened.replyTo = MailAddressesOf(header.replyTo);
    opened.date = TextOf(header.date);
    opened.messageId = TextOf(header.messageId);
    opened.references = TextOf(header.references);
    opened.header = HeaderTextOf(header.block.View());
}

// What is taken over is dropped there: a list of addresses takes many times its field.
void FillFromDocument(CMailDoc& doc, OpenedMail& opened) {
    const auto get = [&](void (CMailDoc::*value)(CString&) const) {
        CString text;
        (doc.*value)(text);
        return text;
    };
    opened.subject = TextOf(get(&CMailDoc::GetSubject));
    opened.to = MailAddressesOf(doc, doc.GetToAddressSize(), &CMailDoc::GetToAddress);
    doc.ClearToAddresses();
    opened.cc = MailAddressesOf(doc, doc.GetCcAddressSize(), &CMailDoc::GetCcAddress);
    doc.ClearCcAddresses();
    opened.body = TextOf(get(&CMailDoc::GetBody));
}

// An attached mail is known by the end of the file that the library made for it, which its name lacks.
std::string FileNameOf(const CMailDoc::FileInfo& info, const std::filesystem::path& made) {
    const std::string name = TextOf(info.Name);
    const bool isMail = made.extension() == kMailExtension || made.filename() == kMailExtension;
    if (!isMail || made.filename() == platform::ToNativePath(info.Name)) return name;
    return (name.empty() ? "_" : name) + kMailExtension;
}

std::vector<OpenedMail::File> FilesOf(const CMailDoc& doc, TargetFolder* target) {
    std::vector<CMailDoc::FileInfo> infos;
    doc.GetFiles(infos);
    std::vector<OpenedMail::File> files;
    files.reserve(infos.size());
    for (const CMailDoc::FileInfo& info : infos) {
        const std::filesystem::path made = platform::ToNativePath(info.Path);
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(made, gone);
        OpenedMail::File& file = files.emplace_back(OpenedMail::File{TextOf(info.Name), {}, gone ? 0 : size});
        if (target != nullptr) file.path = target->Take(made.filename(), FileNameOf(info, made));
    }
    return files;
}

// The fault of a message that can be read to its end, but for the attachments, is the folder's.
std::string Read(const CString& mail, const std::filesystem::path& folder, CMailDoc& doc,
                 std::vector<OpenedMail::File>& files) {
    std::optional<TargetFolder> target;
    if (!folder.empty()) target.emplace(folder);
    std::optional<WorkFolder> work;
    const WorkFolder& place = target ? target->Work() : work.emplace();
    MailFault fault;
    if (!CEMailPerser().Perse(mail, place.LibraryPath(), doc, 0, fault)) return FaultText(fault, folder);
    files = FilesOf(doc, target ? &*target : nullptr);
    if (target) target->Keep();
    return "";
}

}  // namespace

OpenedMail OpenMail(const CString& mail, const std::filesystem::path& folder) {
    CMailDoc doc;
    OpenedMail opened;
    opened.fault = HasTooManyParts(mail) ? TooManyPartsText() : Read(mail, folder, doc, opened.files);
    FillFromDocument(doc, opened);
    const HeaderValues header = HeaderOf(mail);
    FillFromHeader(header, opened);
    CStringArray names;
    for (const OpenedMail::File& file : opened.files)
        names.SetAtGrow(names.GetSize(), CString(file.name));
    opened.summary = SummaryOf(header, names, ShownLine).View();
    return opened;
}

}  // namespace hostkit
