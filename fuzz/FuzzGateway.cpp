// The gateway in front of the engine: whatever comes in, what goes out is refused with a reason or read by the engine,
// with as many attachments as the gateway names, and passes a second time as it is when it passed so the first time.
#include <fuzz/ScratchFolder.h>
#include <hostkit/gateway/Gateway.h>
#include <string>
#include <tests/models/Require.h>
#include <vector>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/platform/text/Unicode.h>

namespace {

void RequireUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::Utf8CharacterAt(text, i);
        Require(character.code != platform::kNoCharacter, "what is told is UTF-8");
        i += character.bytes;
    }
}

void CheckFiles(const CMailDoc& document, const hostkit::Passed& passed) {
    std::vector<CMailDoc::FileInfo> files;
    document.GetFiles(files);
    Require(!passed.changed || files.size() == passed.files.size(), "the engine lists what the gateway names");
    for (std::size_t i = 0; i < passed.files.size(); ++i) {
        const hostkit::PassedFile& file = passed.files[i];
        RequireUtf8(file.name);
        Require(!file.name.empty() && file.name.size() <= 255 && file.name.find('/') == std::string::npos,
                "each name can be a file's");
    }
}

void Pass(const std::string& message, CScratchFolder& folder) {
    const hostkit::Passed passed = hostkit::PassThrough(message);
    if (!passed.refusal.empty()) return;
    CMailDoc document;
    Require(CEMailPerser().Perse(CString(passed.message), folder.Path(), document, 0) != 0, "the engine reads it");
    CheckFiles(document, passed);
    CString body;
    document.GetBody(body);
    RequireUtf8(passed.characters.ToUtf8(body.View()));
    if (!passed.changed) Require(hostkit::PassThrough(passed.message).message == passed.message, "it stays as it is");
    folder.CheckAndEmpty();
}

}  // namespace

// GMime keeps the name of each charset that a parameter had, and lets go of them at exit without freeing them.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions() {
    return "leak:g_mime_charset_iconv_name";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CScratchFolder folder;
    Pass(std::string(ViewOf(data, size)), folder);
    return 0;
}
