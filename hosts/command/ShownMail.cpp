#include "ShownMail.h"

#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <nlohmann/json.hpp>

#include <mailengine/support/platform/text/Unicode.h>

using hostkit::OpenedMail;

namespace {

using nlohmann::ordered_json;

ordered_json JsonOf(const CString& text) {
    return hostkit::TextOf(text.View());
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
        const platform::Character character = platform::Utf8CharacterAt(json, i);
        if (!hostkit::IsUnseen(character.code)) {
            plain.append(json, i, character.bytes);
        } else if (character.code < 0x10000) {
            appendUnit(character.code);
        } else {
            appendUnit(0xD7C0 + (character.code >> 10));
            appendUnit(0xDC00 + (character.code & 0x3FF));
        }
        i += character.bytes;
    }
    return plain;
}

}  // namespace

std::string ShownMail(const OpenedMail& opened, bool headers) {
    CString body;
    opened.doc.GetBody(body);
    std::string shown = headers ? hostkit::HeaderShown(opened.header.View()) : hostkit::SummaryShown(opened);
    if (!opened.fault.empty()) return shown;
    shown += '\n' + hostkit::BodyShown(body.View());
    if (!opened.files.empty()) shown += "\nAttachments:\n";
    for (const OpenedMail::File& file : opened.files) {
        shown += "  " + hostkit::LineShown(file.name.View()) + ", " + std::to_string(file.size) + " bytes";
        if (!file.path.empty()) shown += ": " + hostkit::Shown(file.path);
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
    object["summary"] = hostkit::HeaderTextOf(summary.View());
    if (headers) object["headers"] = hostkit::HeaderTextOf(opened.header.View());
    object["body"] = JsonOfText(doc, &CMailDoc::GetBody);
    object["files"] = JsonOfFiles(opened.files);
    return WithoutUnseen(object.dump(-1, ' ', false, ordered_json::error_handler_t::replace)) + '\n';
}
