#include <hostkit/characters/MailText.h>
#include <hostkit/files/FileName.h>
#include <hostkit/files/PrivateFile.h>
#include <hostkit/files/TargetFolder.h>
#include <hostkit/letter/OpenedMail.h>
#include <hostkit/letter/answer/Forward.h>

namespace hostkit {

namespace {

constexpr char kExtension[] = ".eml";
constexpr char kNameless[] = "mail";

std::filesystem::path FileIn(const std::filesystem::path& folder, const std::string& subject,
                             const std::string& message) {
    const std::string name = CleanFileName(subject, kMaxFileNameBytes - sizeof kExtension);
    TargetFolder target(folder);
    WritePrivateFile(target.Work().Path() / kNameless, message);
    std::filesystem::path file = target.Take(kNameless, (name.empty() ? kNameless : name) + kExtension);
    target.Keep();
    return file;
}

}  // namespace

Letter ForwardOf(const std::string& message, const std::filesystem::path& folder, const std::string& name) {
    const OpenedSubject opened = OpenSubject(message);
    if (!opened.fault.empty()) throw Failure(FailureKind::Message, {Field::None, name}, opened.fault);
    const std::string subject = FromCodePage(Carried(opened.subject, Extent::Line).View());
    Letter letter;
    letter.subject = "Fwd: " + subject;
    letter.attachments = {FileIn(folder, subject, message)};
    return letter;
}

}  // namespace hostkit
