#include <filesystem>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Diagnosis.h>
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

std::vector<MailAddress> MailAddressesOf(const std::vector<CAddress>& addresses) {
    std::vector<MailAddress> read;
    read.reserve(addresses.size());
    for (const CAddress& address : addresses)
        read.push_back(MailAddressOf(address));
    return read;
}

std::vector<MailAddress> MailAddressesOf(const CStringArray& texts) {
    std::vector<MailAddress> read;
    for (int i = 0; i < texts.GetSize(); ++i) {
        CAddress address;
        address.FromText(texts.GetAt(i));
        read.push_back(MailAddressOf(address));
    }
    return read;
}

CString Shown(const CString& value) {
    return CString(LineShown(value.View()));
}

CStringArray Shown(const CStringArray& values) {
    CStringArray shown;
    for (int i = 0; i < values.GetSize(); ++i)
        shown.SetAtGrow(i, Shown(values.GetAt(i)));
    return shown;
}

// What the parser reads in the header, and the document does not keep.
class HeaderReader : private CEMailPerser {
public:
    explicit HeaderReader(const CString& mail) {
        const int end = FindEmptyLine(mail, 0);
        const int bodyTop = end == -1 ? mail.GetLength() : end;
        m_strHeader = mail.Left(bodyTop);
        PerseHeaderFields(mail, bodyTop, bodyTop, m_from, m_to, m_cc, m_strMessageId, m_strReferences, m_strSubject,
                          m_strDate);
        if (const int top = FindTopOfLine(mail, 0, "Reply-To:"); top != -1)
            PerseAddressField(mail, top, "Reply-To:", m_replyTo);
    }

    void Fill(OpenedMail& opened) {
        opened.from = MailAddressesOf(m_from);
        opened.replyTo = MailAddressesOf(m_replyTo);
        opened.date = TextOf(m_strDate);
        opened.messageId = TextOf(m_strMessageId);
        opened.references = TextOf(m_strReferences);
        opened.header = HeaderTextOf(m_strHeader.View());
    }

    std::string ShownSummary(const CString& subject, const std::vector<OpenedMail::File>& files) {
        CStringArray names;
        for (const OpenedMail::File& file : files)
            names.SetAtGrow(names.GetSize(), CString(LineShown(file.name)));
        CString summary;
        MakeOriginalSummary(Shown(m_from), Shown(m_to), Shown(m_cc), Shown(subject), Shown(m_strDate), names, summary);
        return BodyShown(summary.View());
    }

private:
    CStringArray m_from, m_to, m_cc, m_replyTo;
    CString m_strHeader, m_strMessageId, m_strReferences, m_strSubject, m_strDate;
};

void FillFromDocument(const CMailDoc& doc, OpenedMail& opened) {
    const auto get = [&](void (CMailDoc::*value)(CString&) const) {
        CString text;
        (doc.*value)(text);
        return text;
    };
    opened.subject = TextOf(get(&CMailDoc::GetSubject));
    opened.to = MailAddressesOf(AddressesOf(doc, doc.GetToAddressSize(), &CMailDoc::GetToAddress));
    opened.cc = MailAddressesOf(AddressesOf(doc, doc.GetCcAddressSize(), &CMailDoc::GetCcAddress));
    opened.body = TextOf(get(&CMailDoc::GetBody));
    opened.summary = HeaderTextOf(get(&CMailDoc::GetOriginalSummary).View());
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
    HeaderReader header(mail);
    CMailDoc doc;
    OpenedMail opened;
    MailFault fault;
    if (CEMailPerser().Perse(mail, areKept ? target : work.LibraryPath(), doc, 0, fault))
        opened.files = FilesOf(doc, areKept);
    else
        opened.fault = FaultText(fault, folder);
    header.Fill(opened);
    FillFromDocument(doc, opened);
    CString subject;
    doc.GetSubject(subject);
    opened.shownSummary = header.ShownSummary(subject, opened.files);
    return opened;
}

}  // namespace hostkit
