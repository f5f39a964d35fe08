// What the gateway costs: a mail inside the engine's dialect with it and without, and one of today's mails beside
// GMime, which reads it by itself.
#include <bench/Bench.h>
#include <bench/Files.h>
#include <bench/Libraries.h>
#include <bench/MailText.h>
#include <filesystem>
#include <functional>
#include <hostkit/gateway/Gateway.h>
#include <hostkit/letter/OpenedMail.h>
#include <memory>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/EMailPerser.h>

namespace {

constexpr char kWithout[] = "without";  // the parser alone, as --strict has it

using Message = std::shared_ptr<const std::string>;

std::string MailOfEngine(std::size_t textBytes) {
    bench::Letter letter = bench::Convert(bench::SmallLetter(7), bench::kEngine.charset, "UTF-8");
    letter.body = bench::MixedText(textBytes);
    return bench::kEngine.write(letter);
}

std::string MailWithFile(std::size_t bytes) {
    const std::string attachment = bench::Folder() + "/report.bin", path = bench::Folder() + "/mail";
    bench::WriteFile(attachment, bench::AnyBytes(bytes));
    bench::kEngine.writeFile(bench::Convert(bench::SmallLetter(7), bench::kEngine.charset, "UTF-8"), attachment, path);
    std::string message = bench::ReadFile(path);
    std::filesystem::remove(attachment);
    std::filesystem::remove(path);
    return message;
}

// As programs of today write it: raw text in 8 bits, encoded words of UTF-8, a character that code page 932 lacks.
std::string MailOfToday() {
    return "Return-Path: <hanako@example.jp>\nReceived: from mail.example.jp by mx.example.com; Mon, 1 Jun 2026 "
           "10:00:00 "
           "+0900\nMIME-Version: 1.0\nDate: Mon, 1 Jun 2026 10:00:00 +0900\nMessage-ID: <1@example.jp>\n"
           "Subject: =?UTF-8?B?5Lya6K2w44Gu44GK55+l44KJ44Gb8J+YgA==?=\n"
           "From: =?UTF-8?B?5bGx55Sw6Iqx5a2Q?= <hanako@example.jp>\nTo: =?UTF-8?B?55Sw5Lit?= <tanaka@example.jp>\n"
           "Content-Type: text/plain; charset=\"UTF-8\"\nContent-Transfer-Encoding: 8bit\n\n"
           "田中様\n\nいつもお世話になっております。会議の資料をお送りします。\n①番の議題は髙橋さんです😀\n\n"
           "よろしくお願いいたします。\n-- \n山田 花子\n";
}

void Perse(const CString& message) {
    CMailDoc document;
    bench::Require(CEMailPerser().Perse(message, CString(), document, 1) != 0, "mailengine cannot read");
    benchmark::DoNotOptimize(document);
}

void PerseAlone(const std::string& message) {
    Perse(CString(std::string(message)));
}

void PerseBehindGateway(const std::string& message) {
    hostkit::Passed passed = hostkit::PassThrough(message);
    Perse(CString(std::move(passed.message)));
}

void Open(const std::string& message, bool strict) {
    bench::Require(hostkit::OpenMail(message, {.folder = {}, .strict = strict}).fault.empty(), "the kit cannot open");
}

void Add(const std::string& job, const char* contestant, const Message& message, std::size_t times,
         const std::function<void(const std::string&)>& read) {
    const auto run = [=] {
        for (std::size_t i = 0; i < times; ++i)
            read(*message);
    };
    bench::AddTimed(
        job, contestant, times, [=] { return bench::ProcessorTime(run); }, bench::Unit::Items);
}

void AddInside(const std::string& size, const std::string& text, std::size_t times) {
    const Message message = std::make_shared<std::string>(text);
    bench::Require(!hostkit::PassThrough(*message).changed, "a mail of the engine is outside its dialect");
    Add("inside-" + size + "-in-memory", bench::kOurs, message, times, PerseBehindGateway);
    Add("inside-" + size + "-in-memory", kWithout, message, times, PerseAlone);
    Add("inside-" + size + "-opened", bench::kOurs, message, times, [](const auto& mail) { Open(mail, false); });
    Add("inside-" + size + "-opened", kWithout, message, times, [](const auto& mail) { Open(mail, true); });
}

}  // namespace

int main(int argc, char** argv) {
    AddInside("1KB", MailOfEngine(400), 1000);
    AddInside("100KB", MailOfEngine(100 << 10), 50);
    AddInside("5MiB-file", MailWithFile(5 << 20), 1);
    const Message today = std::make_shared<std::string>(MailOfToday());
    bench::Require(hostkit::PassThrough(*today).changed, "a mail of today went through as it was");
    Add("utf-8-mail", bench::kOurs, today, 1000, PerseBehindGateway);
    const auto text = std::make_shared<CString>(*today);
    Add("utf-8-mail", bench::kGMime.name, today, 1000,
        [text](const std::string&) { benchmark::DoNotOptimize(bench::kGMime.read(*text, "")); });
    return bench::Run(argc, argv);
}
