// The golden corpus: each message of tests/data/{rfc,japanese,malformed}, opened and answered, gives the document
// that the JSON file of its name holds. Strings there are bytes: what is not printable ASCII, and the backslash,
// stands as an escape. "files" is null where the list stays as it was; "disk" is what lies in the folder afterwards.
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>
#include <vector>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>

namespace {

using nlohmann::json;

std::string Escaped(std::string_view bytes) {
    std::string text;
    for (const char c : bytes)
        text += c == '\r' ? "\\r" : c == '\n' ? "\\n" : c == '\t' ? "\\t" : c == '\\' ? "\\x5c" : Shown({c});
    return text;
}

template <class Owner>
std::string TextOf(const Owner& owner, void (Owner::*get)(CString&) const) {
    CString text;
    (owner.*get)(text);
    return Escaped(text.View());
}

template <class Getter>
json Addresses(unsigned int size, Getter get) {
    json list = json::array();
    for (unsigned int i = 0; i < size; ++i)
        list.push_back({Escaped(get(i)->GetDisplayName().View()), Escaped(get(i)->GetMailAddress().View())});
    return list;
}

// The name and the path of each attachment, the path less the folder; null where the list is still the old one.
json Files(const CMailDoc& document, const std::vector<CMailDoc::FileInfo>& old, const CString& folder) {
    std::vector<CMailDoc::FileInfo> files;
    document.GetFiles(files);
    if (files.size() == old.size() && files[0].Path == old[0].Path) return nullptr;
    json list = json::array();
    for (const auto& file : files) {
        EXPECT_EQ(file.Path.View().substr(0, folder.View().size()), folder.View());
        list.push_back({Escaped(file.Name.View()), Escaped(file.Path.View().substr(folder.View().size() + 1))});
    }
    return list;
}

json Disk(const std::filesystem::path& folder) {
    json disk = json::object();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        CString name;
        std::string error;
        EXPECT_EQ(platform::ToLibraryPath(entry.path().filename().string(), name, error), 1) << error;
        disk[Escaped(name.View())] = Escaped(ReadWholeFile(entry.path()));
    }
    return disk;
}

json Perse(const std::string& message, int bReply) {
    const CTempFolder folder;
    const std::vector<CMailDoc::FileInfo> old{{"(old)", "(old)"}};
    CMailDoc document;
    document.SetBody("(old)");
    document.SetFiles(old);
    const CString path = folder.Path();
    const int result = CEMailPerser().Perse(CString(std::string_view(message)),
                                            bReply ? nullptr : static_cast<const char*>(path), document, bReply);
    return {
        {"result", result},
        {"subject", TextOf(document, &CMailDoc::GetSubject)},
        {"to", Addresses(document.GetToAddressSize(), [&](unsigned int i) { return document.GetToAddress(i); })},
        {"cc", Addresses(document.GetCcAddressSize(), [&](unsigned int i) { return document.GetCcAddress(i); })},
        {"body", TextOf(document, &CMailDoc::GetBody)},
        {"summary", TextOf(document, &CMailDoc::GetOriginalSummary)},
        {"inReplyTo", TextOf(document, &CMailDoc::GetInReplyTo)},
        {"references", TextOf(document, &CMailDoc::GetReferences)},
        {"files", Files(document, old, path)},
        {"disk", Disk(folder.Native())},
    };
}

void CheckSubject(const std::string& message, const json& reply) {
    CString subject("untouched");
    const int result = CEMailPerser().GetSubject(CString(std::string_view(message)), subject);
    EXPECT_EQ(result, reply["result"]);
    EXPECT_EQ(Escaped(subject.View()), result != 0 ? reply["subject"] : json("untouched"));
}

class Corpus : public testing::TestWithParam<const char*> {};

TEST_P(Corpus, GivesTheDocumentBesideEachMessage) {
    std::size_t messages = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(MAILENGINE_TEST_DATA) / GetParam())) {
        std::filesystem::path path = entry.path();
        if (path.extension() != ".eml") continue;
        SCOPED_TRACE(path.filename());
        ++messages;
        const std::string message = ReadWholeFile(path);
        const json actual{{"open", Perse(message, 0)}, {"reply", Perse(message, 1)}};
        CheckSubject(message, actual["reply"]);
        const json expected = json::parse(ReadWholeFile(path.replace_extension(".json")), nullptr, false);
        EXPECT_EQ(actual.dump(1), expected.dump(1));
        if (actual != expected) WriteWholeFile(path.filename().string() + ".new", actual.dump(1) + "\n");
    }
    EXPECT_GT(messages, 0U);
}

INSTANTIATE_TEST_SUITE_P(Folders, Corpus, testing::Values("rfc", "japanese", "malformed"));

}  // namespace
