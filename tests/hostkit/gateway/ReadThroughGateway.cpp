// ReadThroughGateway [--extract FOLDER] [FILE...]: passes each message (standard input without a FILE) through the
// gateway and the engine, and prints what a host would show: one JSON object on one line each, strings as UTF-8.
// Attachments go into FOLDER/0, FOLDER/1 and so on, one folder for a message.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <hostkit/gateway/Gateway.h>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>

namespace {

using nlohmann::ordered_json;

// The fields that opening leaves out of the document.
class FieldReader : private CEMailPerser {
public:
    explicit FieldReader(const CString& mail) {
        const int end = FindEmptyLine(mail, 0);
        PerseHeaderFields(mail, end, end, from, to, cc, messageId, references, subject, date);
    }
    CStringArray from, to, cc;
    CString messageId, references, subject, date;
};

ordered_json Read(const std::string& message, const std::string& folder) {
    const hostkit::Passed passed = hostkit::PassThrough(message);
    if (!passed.refusal.empty()) return {{"refused", passed.refusal}};
    const auto text = [&](const CString& value) { return passed.characters.ToUtf8(value.View()); };
    const auto address = [&](const CAddress& mailbox) {
        return ordered_json{{"name", text(mailbox.GetDisplayName())}, {"address", text(mailbox.GetMailAddress())}};
    };
    CString path;
    std::string error;
    const bool extracts = !folder.empty() && platform::ToLibraryPath(folder, path, error) != 0;
    const CString mail(passed.message);
    CMailDoc doc;
    const int result = CEMailPerser().Perse(mail, extracts ? static_cast<const char*>(path) : nullptr, doc, !extracts);
    if (result == 0) return {{"unreadable", passed.message}};
    const FieldReader fields(mail);
    ordered_json read{{"gateway", passed.changed},
                      {"same", passed.message == message},
                      {"from", ordered_json::array()},
                      {"to", ordered_json::array()}};
    for (int i = 0; i < fields.from.GetSize(); ++i) {
        CAddress sender;
        sender.FromText(fields.from.GetAt(i));
        read["from"].push_back(address(sender));
    }
    for (unsigned int i = 0; i < doc.GetToAddressSize(); ++i)
        read["to"].push_back(address(*doc.GetToAddress(i)));
    read["cc"] = ordered_json::array();
    for (unsigned int i = 0; i < doc.GetCcAddressSize(); ++i)
        read["cc"].push_back(address(*doc.GetCcAddress(i)));
    read["replyTo"] = ordered_json::array();
    for (const hostkit::Mailbox& mailbox : passed.replyTo)
        read["replyTo"].push_back({{"name", mailbox.name}, {"address", mailbox.address}});
    CString body;
    doc.GetBody(body);
    read["subject"] = text(fields.subject);
    read["date"] = text(fields.date);
    read["messageId"] = text(fields.messageId);
    read["references"] = text(fields.references);
    read["body"] = text(body);
    read["files"] = ordered_json::array();
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    for (std::size_t i = 0; i < std::max(files.size(), passed.files.size()); ++i) {
        ordered_json file = ordered_json::object();
        if (passed.changed) {
            const hostkit::PassedFile& known = passed.files.at(i);
            file = {{"name", known.name}, {"original", known.original}, {"type", known.type}, {"size", known.size}};
        }
        if (extracts) {
            file.emplace("name", text(files.at(i).Name));
            file["path"] = platform::ToNativePath(files.at(i).Path);
        }
        read["files"].push_back(std::move(file));
    }
    read["alternatives"] = passed.alternatives;
    read["notices"] = ordered_json::array();
    for (const hostkit::Notice& notice : passed.notices)
        read["notices"].push_back(notice.Sentence());
    read["replaced"] = passed.characters.Replaced();
    return read;
}

std::string ReadAll(std::istream& stream) {
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

int main(int count, char** arguments) {
    std::vector<std::string> files(arguments + 1, arguments + count);
    std::string folder;
    if (files.size() > 1 && files[0] == "--extract") {
        folder = files[1];
        files.erase(files.begin(), files.begin() + 2);
    }
    int number = 0;
    const auto read = [&](const std::string& message) {
        std::string own;
        if (!folder.empty()) std::filesystem::create_directories(own = folder + "/" + std::to_string(number++));
        std::cout << Read(message, own).dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
    };
    if (files.empty()) read(ReadAll(std::cin));
    for (const std::string& name : files) {
        std::ifstream file(name, std::ios::binary);
        read(ReadAll(file));
    }
}
