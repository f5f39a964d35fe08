#include <filesystem>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/HeaderValues.h>
#include <hostkit/letter/OpenedMail.h>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace hostkit {

namespace {

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

std::vector<OpenedMail::File> FilesOf(const CMailDoc& doc, bool areKept) {
    std::vector<CMailDoc::FileInfo> infos;
    doc.GetFiles(infos);
    std::vector<OpenedMail::File> files;
    files.reserve(infos.size());
    for (const CMailDoc::FileInfo& info : infos) {
        const std::filesystem::path path = platform::ToNativePath(info.Path);
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(path, gone);
        files.push_back({TextOf(info.Name), areKept ? path : "", gone ? 0 : size});
    }
    return files;
}

}  // namespace

OpenedMail OpenMail(const CString& mail, const std::filesystem::path& folder) {
    const bool areKept = !folder.empty();
    const CString target = areKept ? TargetFolder(folder) : CString();
    const WorkFolder work;
    CMailDoc doc;
    OpenedMail opened;
    MailFault fault;
    if (CEMailPerser().Perse(mail, areKept ? target : work.LibraryPath(), doc, 0, fault))
        opened.files = FilesOf(doc, areKept);
    else
        opened.fault = FaultText(fault, folder);
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
