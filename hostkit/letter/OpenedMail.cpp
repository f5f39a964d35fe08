#include <filesystem>
#include <hostkit/characters/MailText.h>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/Diagnosis.h>
#include <hostkit/letter/OpenedMail.h>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>

namespace hostkit {

namespace {

class HeaderReader : private CEMailPerser {
public:
    void Read(const CString& mail, OpenedMail& opened) {
        const int end = FindEmptyLine(mail, 0);
        opened.header = end == -1 ? mail : mail.Left(end);
        CString subject;
        const int bodyTop = end == -1 ? mail.GetLength() : end;
        PerseHeaderFields(mail, bodyTop, bodyTop, opened.from, opened.to, opened.cc, opened.messageId,
                          opened.references, subject, opened.date);
    }

    std::string ShownSummary(const OpenedMail& opened) {
        CStringArray names;
        for (const OpenedMail::File& file : opened.files)
            names.SetAtGrow(names.GetSize(), Shown(file.name));
        CString subject;
        CString summary;
        opened.doc.GetSubject(subject);
        MakeOriginalSummary(Shown(opened.from), Shown(opened.to), Shown(opened.cc), Shown(subject), Shown(opened.date),
                            names, summary);
        return BodyShown(summary.View());
    }

private:
    static CString Shown(const CString& value) { return CString(LineShown(value.View())); }
    static CStringArray Shown(const CStringArray& values) {
        CStringArray shown;
        for (int i = 0; i < values.GetSize(); ++i)
            shown.SetAtGrow(i, Shown(values.GetAt(i)));
        return shown;
    }
};

void CollectFiles(bool isKept, OpenedMail& opened) {
    std::vector<CMailDoc::FileInfo> files;
    opened.doc.GetFiles(files);
    for (const CMailDoc::FileInfo& info : files) {
        const std::string path = platform::ToNativePath(info.Path);
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(path, gone);
        opened.files.push_back({info.Name, isKept ? path : "", gone ? 0 : size});
    }
}

}  // namespace

void OpenMail(const CString& mail, const std::filesystem::path* folder, OpenedMail& opened) {
    HeaderReader().Read(mail, opened);
    const CString target = folder != nullptr ? TargetFolder(*folder) : CString();
    const WorkFolder work;
    if (CEMailPerser().Perse(mail, folder != nullptr ? target : work.LibraryPath(), opened.doc, 0)) {
        CollectFiles(folder != nullptr, opened);
    } else {
        opened.fault = Diagnosis().FaultOf(mail, work.LibraryPath(), folder);
    }
}

std::string SummaryShown(const OpenedMail& opened) {
    return HeaderReader().ShownSummary(opened);
}

}  // namespace hostkit
