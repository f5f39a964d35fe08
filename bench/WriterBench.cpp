// Writing beside libcrypto, GMime and mimetic: Base64 lines of a file, a mail with an attachment, many small mails, and
// the memory that it takes.
#include <bench/Bench.h>
#include <bench/Files.h>
#include <bench/Libraries.h>
#include <bench/MailText.h>
#include <bench/Memory.h>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gmime/gmime.h>
#include <memory>
#include <openssl/evp.h>
#include <unistd.h>
#include <vector>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/writer/EMailWriter.h>
#include <mailengine/writer/FileOutStream.h>

namespace {

constexpr std::size_t kFileBytes = 64 << 20;
constexpr std::size_t kAttachmentBytes = 20 << 20;
constexpr std::size_t kMails = 10000;
constexpr std::size_t kPieceBytes = 64 * 1024;

CString LibraryPath(const std::string& path) {
    CString result;
    std::string error;
    bench::Require(platform::ToLibraryPath(path, result, error) != 0, error);
    return result;
}

class CBase64Writer : public CEMailWriter {
public:
    using CEMailWriter::CEMailWriter;
    using CEMailWriter::WriteBase64;
};

using FileJob = void (*)(const std::string& from, const std::string& to);

// In reads of 540 bytes, as the writer takes an attachment.
void EncodeByWriter(const std::string& from, const std::string& to) {
    CFile file;
    CFileOutStream stream(LibraryPath(to));
    const CMailDoc document;
    CProgressCallback progress("", 1, nullptr);
    CBase64Writer writer(&stream, document, progress);
    bench::Require(file.Open(LibraryPath(from), CFile::modeRead | CFile::shareDenyNone | CFile::typeBinary) != 0 &&
                       stream.Open() != 0,
                   "mailengine cannot open the files");
    progress.Start(static_cast<unsigned int>(kFileBytes));
    unsigned char piece[540];
    for (unsigned int read; (read = file.Read(piece, sizeof piece)) > 0;)
        bench::Require(writer.WriteBase64(piece, read) != 0, "mailengine cannot write lines");
    stream.Close();
    bench::Require(stream.Failed() == 0, "mailengine lost bytes");
}

void EncodeByLibcrypto(const std::string& from, const std::string& to) {
    const int source = open(from.c_str(), O_RDONLY);
    const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    const std::unique_ptr<EVP_ENCODE_CTX, void (*)(EVP_ENCODE_CTX*)> context(EVP_ENCODE_CTX_new(), EVP_ENCODE_CTX_free);
    std::vector<unsigned char> piece(kPieceBytes), lines(kPieceBytes * 2);
    int made = 0;
    EVP_EncodeInit(context.get());
    for (ssize_t got; (got = read(source, piece.data(), piece.size())) > 0;) {
        EVP_EncodeUpdate(context.get(), lines.data(), &made, piece.data(), static_cast<int>(got));
        bench::Require(write(target, lines.data(), static_cast<std::size_t>(made)) == made, "no room");
    }
    EVP_EncodeFinal(context.get(), lines.data(), &made);
    bench::Require(write(target, lines.data(), static_cast<std::size_t>(made)) == made, "no room");
    close(source);
    close(target);
}

void EncodeByGMime(const std::string& from, const std::string& to) {
    GMimeStream* const source = g_mime_stream_fs_open(from.c_str(), O_RDONLY, 0, nullptr);
    GMimeStream* const target = g_mime_stream_fs_open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600, nullptr);
    GMimeStream* const filtered = g_mime_stream_filter_new(source);
    GMimeFilter* const filter = g_mime_filter_basic_new(GMIME_CONTENT_ENCODING_BASE64, TRUE);
    g_mime_stream_filter_add(GMIME_STREAM_FILTER(filtered), filter);
    bench::Require(g_mime_stream_write_to_stream(filtered, target) > 0 && g_mime_stream_flush(target) == 0,
                   "gmime cannot write lines");
    for (gpointer object : {gpointer(filter), gpointer(filtered), gpointer(source), gpointer(target)})
        g_object_unref(object);
}

void RequireLinesOf(const std::string& path, const std::string& bytes, const char* contestant) {
    const std::string text = bench::ReadFile(path);
    gsize size = 0;
    guchar* const decoded = g_base64_decode(text.c_str(), &size);
    bench::Require(size == bytes.size() && std::memcmp(decoded, bytes.data(), size) == 0,
                   std::string(contestant) + ": the lines do not give the file back");
    g_free(decoded);
}

void AddBase64Lines(const std::string& bytes) {
    const std::string from = bench::Folder() + "/file", to = bench::Folder() + "/lines";
    bench::WriteFile(from, bytes);
    const auto add = [&](const char* contestant, FileJob encode) {
        bench::AddTimed("base64-lines-to-file", contestant, bytes.size(),
                        [=] { return bench::TimeToMake(to, [&] { encode(from, to); }); });
    };
    const std::pair<const char*, FileJob> contestants[] = {
        {bench::kOurs, EncodeByWriter}, {"libcrypto", EncodeByLibcrypto}, {"gmime", EncodeByGMime}};
    for (const auto& [contestant, encode] : contestants) {
        encode(from, to);
        RequireLinesOf(to, bytes, contestant);
        std::filesystem::remove(to);
        add(contestant, encode);
    }
    add(bench::kCopy, bench::CopyFile);
}

// GMime reads every contestant's message.
void RequireLetter(const std::string& message, const bench::Letter& letter, const std::string& folder,
                   const char* contestant) {
    const bench::Letter read = bench::kGMime.read(CString(std::string_view(message)), folder);
    bench::Require(read == letter, std::string(contestant) + ": the message does not give the letter back");
}

void AddMailWithAttachment(const std::string& bytes) {
    const std::string job = "mail-with-20MiB-to-file", path = bench::Folder() + "/mail", out = bench::Folder("out");
    const std::string attachment = bench::Folder() + "/report.bin", extracted = out + "/report.bin";
    bench::WriteFile(attachment, bytes);
    const bench::Letter letter = bench::SmallLetter(0);
    for (const bench::Library* library : bench::kLibraries) {
        const bench::Letter own = bench::Convert(letter, library->charset, "UTF-8");
        const auto write = [=] { library->writeFile(own, attachment, path); };
        write();
        RequireLetter(bench::ReadFile(path), letter, out, library->name);
        bench::Require(bench::ReadFile(extracted) == bytes, std::string(library->name) + ": another attachment");
        for (const std::string& made : {path, extracted})
            std::filesystem::remove(made);
        bench::AddTimed(job, library->name, bytes.size(), [=] { return bench::TimeToMake(path, write); });
    }
    bench::AddTimed(job, bench::kCopy, bytes.size(),
                    [=] { return bench::TimeToMake(path, [&] { bench::CopyFile(attachment, path); }); });
}

std::vector<bench::Letter> Letters(const char* charset) {
    std::vector<bench::Letter> letters;
    for (std::size_t i = 0; i < kMails; ++i)
        letters.push_back(bench::Convert(bench::SmallLetter(i), charset, "UTF-8"));
    return letters;
}

void AddSmallMails() {
    for (const bench::Library* library : bench::kLibraries) {
        const auto letters = std::make_shared<std::vector<bench::Letter>>(Letters(library->charset));
        RequireLetter(library->write(letters->at(7)), bench::SmallLetter(7), bench::Folder(), library->name);
        const auto run = [library, letters] {
            for (const bench::Letter& letter : *letters)
                benchmark::DoNotOptimize(library->write(letter));
        };
        bench::AddTimed(
            "small-mails-to-memory", library->name, kMails, [=] { return bench::ProcessorTime(run); },
            bench::Unit::Items);
    }
}

void MeasureMemory(std::size_t mebibytes) {
    const std::string attachment = bench::Folder() + "/large", small = bench::Folder() + "/small";
    const std::string path = bench::Folder() + "/mail";
    bench::WriteFile(attachment, bench::AnyBytes(mebibytes << 20));
    bench::WriteFile(small, "small");
    for (const bench::Library* library : bench::kLibraries)
        bench::MeasureMemory("memory-writing-" + std::to_string(mebibytes) + "MiB", library->name, [&] {
            const bench::Letter letter = bench::Convert(bench::SmallLetter(0), library->charset, "UTF-8");
            library->writeFile(letter, small, path);
            return [=] { library->writeFile(letter, attachment, path); };
        });
    for (const std::string& made : {attachment, small, path})
        std::filesystem::remove(made);
}

}  // namespace

int main(int argc, char** argv) {
    for (const std::size_t mebibytes : {20u, 80u})
        MeasureMemory(mebibytes);
    g_mime_init();
    AddBase64Lines(bench::AnyBytes(kFileBytes));
    AddMailWithAttachment(bench::AnyBytes(kAttachmentBytes));
    AddSmallMails();
    return bench::Run(argc, argv);
}
