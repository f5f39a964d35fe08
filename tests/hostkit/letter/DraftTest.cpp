#include <gtest/gtest.h>
#include <hostkit/letter/AddressList.h>
#include <hostkit/letter/Draft.h>
#include <hostkit/letter/MailtoUrl.h>
#include <hostkit/letter/Recovery.h>
#include <sys/stat.h>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>

namespace {

using hostkit::Letter;

TEST(Draft, KeepsEveryValueInAPrivateFile) {
    const CTempFolder folder;
    const std::string path = folder / "下書き";
    Letter all;
    int number = 0;
    for (auto text : {&Letter::from, &Letter::replyTo, &Letter::subject, &Letter::dear, &Letter::greeting,
                      &Letter::body, &Letter::closing, &Letter::signature, &Letter::inReplyTo, &Letter::references})
        all.*text = " #[x]\r\n\t;=\\s\\n😀 " + std::to_string(++number);
    all.body = " \n[Draft]\nVersion=9\n\n" + std::string(300000, 'x') + "\n ";
    all.dear = "";
    all.to = {"", "髙橋; <a@b>", "c@d\\;", ""};
    all.cc = {""};
    all.bcc = {"e@f"};
    all.bodyFile = "-";
    all.mailer = "";
    all.attachments = {folder / "x y;%41", folder / "\xFF\n髙"};
    all.senderBcc = all.upperReply = true;
    all.missing = hostkit::Missing::Replace;
    WriteWholeFile(path, "older");
    for (const Letter& letter : {all, Letter(), all}) {
        hostkit::SaveDraft(letter, path);
        EXPECT_TRUE(hostkit::OpenDraft(path) == letter) << ReadWholeFile(path).substr(0, 2000);
        struct stat status;
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u);
    }
    const std::string saved = ReadWholeFile(path);
    for (const std::string& bytes : {std::string(), std::string("Subject: x\n\n"), std::string("[Draft]\nVersion=2\n"),
                                     std::string("\0\xFF", 2), saved + "\nFrom=\xFF\n", saved + "\nAttachments=a;\n"}) {
        WriteWholeFile(path, bytes);
        EXPECT_THROW(hostkit::OpenDraft(path), hostkit::Failure) << bytes.substr(0, 20);
    }
    EXPECT_THROW(hostkit::SaveDraft(all, folder / "none/x"), hostkit::Failure);
    EXPECT_THROW(hostkit::SaveDraft(all, folder.Native()), hostkit::Failure);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Native()), {}), 1);
}

TEST(MailtoUrl, FillsInWhatIsSeenAndNothingElse) {
    const auto letter = hostkit::LetterOfMailto(
        "MAILTO:a@b,%22c%2Cd%22@e?to=f%40g&cc=%E9%AB%99%20%3Ch@i%3E,,j@k&bcc=l@m%0D%0ASubject:x&SUBJECT=100%&subject=2"
        "&body=1%0D%0A2%00%1B%E2%80%AE%FF+3&In-Reply-To=%3C1%40x%3E%0D%0ABcc:x&attach=/etc/passwd&from=z@z&body=4&=&");
    Letter expected;
    expected.to = {"a@b", "\"c,d\"@e", "f@g"};
    expected.cc = {"髙 <h@i>", "j@k"};
    expected.bcc = {"l@m  Subject:x"};
    expected.subject = "100%";
    expected.body = "1\r\n2+3";
    expected.inReplyTo = "<1@x>  Bcc:x";
    EXPECT_TRUE(letter == expected) << *letter.body << '|' << *letter.subject << '|' << *letter.inReplyTo;
    CMailDoc doc;
    EXPECT_THROW(letter.Fill(doc), hostkit::Failure);
    EXPECT_TRUE(hostkit::LetterOfMailto("mailto:") == Letter());
    for (const char* const url : {"", "mailto", "http://a@b", "a@b"})
        EXPECT_THROW(hostkit::LetterOfMailto(url), hostkit::Failure);
}

TEST(AddressList, PartsWhereAJapaneseKeyboardDoes) {
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {" a@b , ;c@d；田中 <e@f>、\n　g@h　", {"a@b", "c@d", "田中 <e@f>", "g@h"}},
        {"\"a, \\\"b; c\" <d@e>, <f,g@h>", {"\"a, \\\"b; c\" <d@e>", "<f,g@h>"}},
        {"\"a, b@c", {"\"a", "b@c"}},
        {" ,;", {}}};
    for (const auto& [line, addresses] : rows) {
        EXPECT_EQ(hostkit::AddressesIn(line), addresses) << line;
        EXPECT_EQ(hostkit::AddressesIn(hostkit::LineOf(addresses)), addresses) << line;
    }
}

TEST(Recovery, OnlyWhatNobodyWritesAtIsLeft) {
    const CTempFolder state;
    const std::filesystem::path folder = state.Native() / "a" / "recovery";
    EXPECT_TRUE(hostkit::Recovery::LeftIn(folder).empty());
    Letter letter;
    letter.bcc = {"x"};
    {
        hostkit::Recovery idle(folder), kept(folder), left(folder);
        kept.Keep(letter);
        left.Keep(letter);
        left.Leave();
        EXPECT_TRUE(hostkit::Recovery::LeftIn(folder).empty());
        EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
    }
    {
        const auto found = hostkit::Recovery::LeftIn(folder);
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0]->Kept(), letter);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

}  // namespace
