#include "ShownMail.h"

#include <cctype>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <nlohmann/json.hpp>

#include <mailengine/support/platform/text/Unicode.h>

using hostkit::CountedWords;
using hostkit::OpenedMail;
using hostkit::Words;

namespace {

using nlohmann::ordered_json;

constexpr char kUpperHex[] = "0123456789ABCDEF";

ordered_json JsonOf(const std::vector<hostkit::Mailbox>& addresses) {
    ordered_json list = ordered_json::array();
    for (const hostkit::Mailbox& one : addresses)
        list.push_back({{"name", one.name}, {"address", one.address}});
    return list;
}

// A path need not be UTF-8, and JSON must: then each byte that is no plain letter stands once more by its number, as in
// a URI (RFC 3986 2.1).
void AddPath(ordered_json& object, const std::string& key, const std::string& path) {
    object[key] = path;
    if (hostkit::IsUtf8(path)) return;
    std::string escaped;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain =
            byte < 0x80 && (std::isalnum(byte) != 0 || std::string_view("-._~/").find(c) != std::string_view::npos);
        if (isPlain)
            escaped += c;
        else
            escaped.append({'%', kUpperHex[byte >> 4], kUpperHex[byte & 0xF]});
    }
    object[key + "Escaped"] = escaped;
}

ordered_json JsonOf(const std::vector<OpenedMail::File>& files) {
    ordered_json list = ordered_json::array();
    for (const OpenedMail::File& file : files) {
        ordered_json object = {{"name", file.name}, {"original", file.original}};
        if (!file.path.empty()) AddPath(object, "path", file.path.native());
        object["size"] = file.size;
        object["type"] = file.type;
        list.push_back(std::move(object));
    }
    return list;
}

// JSON escapes the controls of ASCII alone; whatever else is not seen gets the same form here.
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

// By units of 1024, as the engine's sizes for people are.
std::string SizeShown(std::uintmax_t bytes) {
    constexpr std::uintmax_t kUnit = 1024;
    if (bytes < kUnit) return CountedWords(bytes, "{1} byte", "{1} bytes");
    std::uintmax_t unit = kUnit;
    const char* const names[] = {"KB", "MB", "GB"};
    int name = 0;
    for (; name < 2 && bytes / unit >= kUnit; ++name)
        unit *= kUnit;
    const std::string tenths = std::to_string(bytes % unit * 10 / unit);
    return std::to_string(bytes / unit) + '.' + tenths + ' ' + names[name];
}

}  // namespace

std::string ShownMail(const OpenedMail& opened, bool headers) {
    std::string shown = hostkit::BodyShown(headers ? opened.header : opened.summary);
    if (!opened.fault.empty()) return shown;
    shown += '\n';
    shown += hostkit::BodyShown(opened.body);
    if (!opened.files.empty()) shown += '\n' + Words("Attachments:") + '\n';
    int number = 0;
    for (const OpenedMail::File& file : opened.files) {
        shown += "  " + std::to_string(++number) + ". " + hostkit::LineShown(file.name) + ", " + SizeShown(file.size) +
                 ", " + hostkit::LineShown(file.type);
        if (!file.path.empty()) shown += ": " + hostkit::Shown(file.path.native());
        shown += '\n';
    }
    return shown;
}

std::string JsonOfMail(const OpenedMail& opened, bool headers, const hostkit::MessageSource::Message& message) {
    ordered_json object = ordered_json::object();
    AddPath(object, "file", message.file.native());
    object["message"] = message.number;
    object["ok"] = opened.fault.empty();
    if (!opened.fault.empty()) object["error"] = opened.fault;
    object["subject"] = opened.subject;
    object["from"] = JsonOf(opened.from);
    object["to"] = JsonOf(opened.to);
    object["cc"] = JsonOf(opened.cc);
    object["replyTo"] = JsonOf(opened.replyTo);
    object["date"] = opened.date;
    object["messageId"] = opened.messageId;
    object["references"] = opened.references;
    object["summary"] = opened.summary;
    if (headers) object["headers"] = opened.header;
    object["body"] = opened.body;
    object["files"] = JsonOf(opened.files);
    object["gateway"] = opened.gateway;
    object["replaced"] = opened.replaced;
    object["alternatives"] = opened.alternatives;
    object["warnings"] = opened.warnings;
    return WithoutUnseen(object.dump(-1, ' ', false, ordered_json::error_handler_t::replace)) + '\n';
}
