#include "OpenedMail.h"

#include <filesystem>
#include <nlohmann/json.hpp>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>

#include "Diagnosis.h"
#include "MailText.h"
#include "MessageFile.h"
#include "Utf8.h"

namespace {

using nlohmann::ordered_json;

class CHeaderReader : private CEMailPerser {
public:
    void Read(const CString& mail, OpenedMail& opened) {
        const int end = FindEmptyLine(mail, 0);
        opened.header = end == -1 ? mail : mail.Left(end);
        CString subject;
        const int bodyTop = end == -1 ? mail.GetLength() : end;
        PerseHeaderFields(mail, bodyTop, bodyTop, opened.from, opened.to, opened.cc, opened.messageId,
                          opened.references, subject, opened.date);
    }

    // The summary with each value on its line: a decoded line end would show lines that the header does not have.
    std::string ShownSummary(const OpenedMail& opened) {
        CStringArray names;
        for (const OpenedMail::File& file : opened.files)
            names.SetAtGrow(names.GetSize(), Shown(file.name));
        CString subject;
        CString summary;
        opened.doc.GetSubject(subject);
        MakeOriginalSummary(Shown(opened.from), Shown(opened.to), Shown(opened.cc), Shown(subject), Shown(opened.date),
                            names, summary);
        return mailtext::BodyShown(summary.View());
    }

private:
    static CString Shown(const CString& value) { return CString(mailtext::LineShown(value.View())); }
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

ordered_json JsonOf(const CString& text) {
    return mailtext::Outside(text.View());
}

ordered_json JsonOf(const CAddress& address) {
    return {{"name", JsonOf(address.GetDisplayName())}, {"address", JsonOf(address.GetMailAddress())}};
}

ordered_json JsonOfSenders(const CStringArray& from) {
    ordered_json list = ordered_json::array();
    for (int i = 0; i < from.GetSize(); ++i) {
        CAddress address;
        address.FromText(from.GetAt(i));
        list.push_back(JsonOf(address));
    }
    return list;
}

ordered_json JsonOfList(const CMailDoc& doc, unsigned int size,
                        const CAddress* (CMailDoc::*addressAt)(unsigned int) const) {
    ordered_json list = ordered_json::array();
    for (unsigned int i = 0; i < size; ++i)
        list.push_back(JsonOf(*(doc.*addressAt)(i)));
    return list;
}

ordered_json JsonOfFiles(const std::vector<OpenedMail::File>& files) {
    ordered_json list = ordered_json::array();
    for (const OpenedMail::File& file : files) {
        ordered_json object = {{"name", JsonOf(file.name)}};
        if (!file.path.empty()) object["path"] = file.path;
        object["size"] = file.size;
        list.push_back(std::move(object));
    }
    return list;
}

ordered_json JsonOfText(const CMailDoc& doc, void (CMailDoc::*get)(CString&) const) {
    CString text;
    (doc.*get)(text);
    return JsonOf(text);
}

// JSON escapes the controls of ASCII alone; the others, which a terminal may obey too, get the same form here.
std::string WithoutUnseen(const std::string& json) {
    constexpr char kHexDigits[] = "0123456789abcdef";
    std::string plain;
    const auto appendUnit = [&](char32_t unit) {
        plain += "\\u";
        for (int shift = 12; shift >= 0; shift -= 4)
            plain += kHexDigits[(unit >> shift) & 0xF];
    };
    for (std::size_t i = 0; i < json.size();) {
        const utf8::Character character = utf8::CharacterAt(json, i);
        if (!utf8::IsUnseen(character.code)) {
            plain.append(json, i, character.length);
        } else if (character.code < 0x10000) {
            appendUnit(character.code);
        } else {
            appendUnit(0xD7C0 + (character.code >> 10));
            appendUnit(0xDC00 + (character.code & 0x3FF));
        }
        i += character.length;
    }
    return plain;
}

}  // namespace

void OpenMail(const CString& mail, const std::string* folder, OpenedMail& opened) {
    CHeaderReader().Read(mail, opened);
    const CString target = folder != nullptr ? TargetFolder(*folder) : CString();
    const CWorkFolder work;
    if (CEMailPerser().Perse(mail, folder != nullptr ? target : work.LibraryPath(), opened.doc, 0)) {
        CollectFiles(folder != nullptr, opened);
    } else {
        opened.fault = CDiagnosis().FaultOf(mail, work.LibraryPath(), folder);
    }
}

std::string ShownMail(const OpenedMail& opened, bool headers) {
    CString body;
    opened.doc.GetBody(body);
    std::string shown = headers ? mailtext::HeaderShown(opened.header.View()) : CHeaderReader().ShownSummary(opened);
    if (!opened.fault.empty()) return shown;
    shown += '\n' + mailtext::BodyShown(body.View());
    if (!opened.files.empty()) shown += "\nAttachments:\n";
    for (const OpenedMail::File& file : opened.files) {
        shown += "  " + mailtext::LineShown(file.name.View()) + ", " + std::to_string(file.size) + " bytes";
        if (!file.path.empty()) shown += ": " + utf8::Shown(file.path);
        shown += '\n';
    }
    return shown;
}

std::string JsonOfMail(const OpenedMail& opened, bool headers, const std::string& file) {
    const CMailDoc& doc = opened.doc;
    ordered_json object = {{"file", file}, {"ok", opened.fault.empty()}};
    if (!opened.fault.empty()) object["error"] = opened.fault;
    object["subject"] = JsonOfText(doc, &CMailDoc::GetSubject);
    object["from"] = JsonOfSenders(opened.from);
    object["to"] = JsonOfList(doc, doc.GetToAddressSize(), &CMailDoc::GetToAddress);
    object["cc"] = JsonOfList(doc, doc.GetCcAddressSize(), &CMailDoc::GetCcAddress);
    object["date"] = JsonOf(opened.date);
    object["messageId"] = JsonOf(opened.messageId);
    object["references"] = JsonOf(opened.references);
    CString summary;
    doc.GetOriginalSummary(summary);
    object["summary"] = mailtext::HeaderOutside(summary.View());
    if (headers) object["headers"] = mailtext::HeaderOutside(opened.header.View());
    object["body"] = JsonOfText(doc, &CMailDoc::GetBody);
    object["files"] = JsonOfFiles(opened.files);
    return WithoutUnseen(object.dump(-1, ' ', false, ordered_json::error_handler_t::replace)) + '\n';
}
