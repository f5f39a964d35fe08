#include <hostkit/characters/Words.h>
#include <hostkit/files/MediaTypes.h>
#include <hostkit/gateway/Naming.h>
#include <hostkit/gateway/text/EncodedWords.h>

namespace hostkit::gateway {
namespace {

std::string ExtensionFor(const Content& content) {
    if (content.type.starts_with("message/") || content.Is("text/rfc822-headers")) return ".txt";
    std::string extension = ExtensionForType(content.type);
    if (!extension.empty()) return extension;
    return content.IsText() ? ".txt" : ".bin";
}

std::string SubjectOf(std::string_view mail) {
    std::size_t bodyTop = 0;
    const Header header = ReadHeader(mail.substr(TopOfMessage(mail)), bodyTop);
    const Field* const subject = header.Find("Subject");
    return subject == nullptr ? "" : DecodeWords(Unfold(subject->raw), Words::Text);
}

}  // namespace

void NameFiles(std::vector<Attached>& files) {
    int number = 0;
    for (Attached& file : files) {
        if (!file.name.empty()) continue;
        file.isMade = true;
        const Content& content = file.entity->content;
        const bool isMail = content.Is("message/rfc822") || content.Is("message/global");
        std::string room;
        if (isMail) file.name = SubjectOf(DataOf(*file.entity, room));
        if (file.name.empty()) file.name = hostkit::Words("attachment{1}", ++number);
        file.name += isMail ? ".eml" : ExtensionFor(content);
    }
}

}  // namespace hostkit::gateway
