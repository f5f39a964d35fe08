// Reading beside GMime and mimetic: a message with an attachment, which goes to a file, at several sizes, many small
// mails, and the memory that it takes.
#include <bench/Bench.h>
#include <bench/Files.h>
#include <bench/Libraries.h>
#include <bench/MailText.h>
#include <bench/Memory.h>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t kMails = 10000;
constexpr std::size_t kMebibyte = 1 << 20;
// The attachment that makes a message of about that size: lines of 72 characters and a CRLF for 54 bytes.
constexpr std::size_t AttachmentOf(std::size_t messageBytes) {
    return messageBytes / 74 * 54;
}

// A message of our writer, in the charset and the encodings of Japanese mail.
std::string MakeMessage(const bench::Letter& letter, const std::string& bytes) {
    const std::string attachment = bench::Folder() + "/report.bin", path = bench::Folder() + "/mail";
    bench::WriteFile(attachment, bytes);
    bench::kEngine.writeFile(bench::Convert(letter, bench::kEngine.charset, "UTF-8"), attachment, path);
    const std::string message = bench::ReadFile(path);
    for (const std::string& made : {attachment, path})
        std::filesystem::remove(made);
    return message;
}

void RequireLetter(const bench::Library& library, const bench::Letter& read, const bench::Letter& letter) {
    bench::Require(bench::Convert(read, "UTF-8", library.charset) == letter,
                   std::string(library.name) + ": another letter");
}

struct Sample {
    bench::Letter letter;
    std::string attachment;
    CString message;
};

std::shared_ptr<const Sample> MakeSample(std::size_t attachmentBytes) {
    Sample sample{bench::SmallLetter(0), bench::AnyBytes(attachmentBytes), {}};
    sample.message = CString(MakeMessage(sample.letter, sample.attachment));
    return std::make_shared<const Sample>(std::move(sample));
}

void AddExtraction(const std::string& job, const std::shared_ptr<const Sample>& sample) {
    const std::string out = bench::Folder("out"), path = out + "/report.bin";
    const std::size_t size = sample->message.View().size();
    for (const bench::Library* library : bench::kLibraries) {
        RequireLetter(*library, library->read(sample->message, out), sample->letter);
        bench::Require(bench::ReadFile(path) == sample->attachment,
                       std::string(library->name) + ": another attachment");
        std::filesystem::remove(path);
        bench::AddTimed(job, library->name, size, [=] {
            return bench::TimeToMake(path, [&] { benchmark::DoNotOptimize(library->read(sample->message, out)); });
        });
    }
    // The bytes of the attachment alone go to a file.
    bench::AddTimed(job, bench::kCopy, size,
                    [=] { return bench::TimeToMake(path, [&] { bench::WriteFile(path, sample->attachment); }); });
}

void AddSmallMails() {
    const auto messages = std::make_shared<std::vector<CString>>();
    for (std::size_t i = 0; i < kMails; ++i)
        messages->emplace_back(
            bench::kEngine.write(bench::Convert(bench::SmallLetter(i), bench::kEngine.charset, "UTF-8")));
    for (const bench::Library* library : bench::kLibraries) {
        RequireLetter(*library, library->read(messages->at(7), ""), bench::SmallLetter(7));
        const auto run = [=] {
            for (const CString& message : *messages)
                benchmark::DoNotOptimize(library->read(message, ""));
        };
        bench::AddTimed(
            "small-mails-from-memory", library->name, kMails, [=] { return bench::ProcessorTime(run); },
            bench::Unit::Items);
    }
}

void MeasureMemory(std::size_t mebibytes) {
    const std::string out = bench::Folder("out"), path = out + "/report.bin";
    for (const bench::Library* library : bench::kLibraries)
        bench::MeasureMemory("memory-reading-" + std::to_string(mebibytes) + "MiB", library->name, [&] {
            library->read(MakeSample(kMebibyte)->message, out);
            std::filesystem::remove(path);
            const auto message =
                std::make_shared<const CString>(MakeSample(AttachmentOf(mebibytes * kMebibyte))->message);
            std::filesystem::remove(path);
            return [=] {
                library->read(*message, out);
                std::filesystem::remove(path);
            };
        });
}

}  // namespace

int main(int argc, char** argv) {
    for (const std::size_t mebibytes : {20u, 80u})
        MeasureMemory(mebibytes);
    AddExtraction("message-with-20MiB", MakeSample(20 * kMebibyte));
    AddExtraction("message-of-5MiB", MakeSample(AttachmentOf(5 * kMebibyte)));
    AddExtraction("message-of-80MiB", MakeSample(AttachmentOf(80 * kMebibyte)));
    bench::Compare("message-of-80MiB", "message-of-5MiB");
    AddSmallMails();
    return bench::Run(argc, argv);
}
