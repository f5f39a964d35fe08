// The whole parse: opened with extraction into a scratch folder, and answered. Whatever the message says, files come
// into that folder only, the list names each of them once, and an answer touches no file.
#include <fuzz/ScratchFolder.h>
#include <set>
#include <string>
#include <tests/models/Require.h>
#include <vector>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/files/Path.h>

namespace {

void CheckFiles(const CMailDoc& document, const CScratchFolder& folder) {
    std::vector<CMailDoc::FileInfo> files;
    document.GetFiles(files);
    std::set<std::string> paths;
    for (const auto& file : files) {
        const std::string path = platform::ToNativePath(file.Path);
        Require(std::filesystem::is_regular_file(std::filesystem::symlink_status(path)), "each path is a file");
        Require(paths.insert(path).second, "each attachment has a file of its own");
    }
    Require(files.size() == folder.Entries(), "a message that is read through leaves no file beside its list");
}

void Open(const CString& message, CScratchFolder& folder) {
    CMailDoc document;
    MailFault fault;
    const int result = CEMailPerser().Perse(message, folder.Path(), document, 0, fault);
    Require((fault.kind == MailFault::Kind::kNone) == (result != 0),
            "what cannot be read has a fault, and nothing else");
    Require(fault.offset <= message.View().size(), "a fault lies in the message");
    if (result != 0) CheckFiles(document, folder);
    folder.CheckAndEmpty();
}

void Answer(const CString& message, CScratchFolder& folder) {
    CMailDoc document;
    CString subject("untouched"), answered;
    const int result = CEMailPerser().Perse(message, nullptr, document, 1);
    Require(CEMailPerser().GetSubject(message, subject) == result, "the subject is had from what can be answered");
    document.GetSubject(answered);
    Require(subject == (result != 0 ? answered : CString("untouched")), "one subject by both ways");
    Require(folder.Entries() == 0, "an answer makes no file");
}

// A message without MIME-Version ends early, one with bare LF too: both are had again with the fault mended.
CString Mended(std::string_view bytes) {
    std::string text = "MIME-Version: 1.0\r\n";
    for (const char c : bytes) {
        if (c == '\n' && text.back() != '\r') text += '\r';
        text += c;
    }
    return CString(std::move(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CScratchFolder folder;
    for (const CString& message : {CString(ViewOf(data, size)), Mended(ViewOf(data, size))}) {
        Open(message, folder);
        Answer(message, folder);
    }
    return 0;
}
