#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <tests/GoldenFile.h>
#include <tests/TempFolder.h>
#include <tuple>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace {

CString Letter(const CMailDoc& doc) {
    CString text("old");
    doc.GetBodyWithLetter(text);
    return text;
}

TEST(MailDocLetter, JoinsThePartsThatAreThere) {
    const std::tuple<const char*, const char*, const char*, const char*, const char*, int, const char*> rows[] = {
        {"", "", "", "", "", 0, ""},
        {"D", "G", "B", "C", "S", 0, "D\r\n\r\nG\r\n\r\nB\r\n\r\nC\r\n\r\nS"},
        {"D", "", "", "C", "", 0, "D\r\n\r\n\r\n\r\nC"},
        {"", "", "R\r\n----- Original Message -----", "", "S", 0, "R\r\n----- Original Message -----\r\n\r\nS"},
        {"D", "", "R\r\n----- Original Message 1\r\n----- Original Message 2", "C", "S", 1,
         "D\r\n\r\nR\r\n\r\nC\r\n\r\nS\r\n\r\n\r\n----- Original Message 1\r\n----- Original Message 2"},
        {"", "", "\r\n----- Original Message", "", "S", 1, "\r\n\r\nS\r\n\r\n\r\n----- Original Message"},
        {"", "", "----- Original Message", "", "S", 1, "----- Original Message\r\n\r\nS"},
    };
    for (const auto& [dear, greeting, body, closing, signature, upper, expected] : rows) {
        CMailDoc doc;
        doc.SetDear(dear);
        doc.SetGreeting(greeting);
        doc.SetBody(body);
        doc.SetClosing(closing);
        doc.SetSignature(signature);
        doc.SetUpperReplyFlg(upper);
        EXPECT_EQ(Letter(doc), expected);
    }
}

TEST(MailDocAddresses, KeepsCopiesInOrder) {
    CMailDoc doc;
    CAddress address("g", "n", "a@b");
    EXPECT_EQ(doc.AddToAddress(address), 1);
    address.SetMailAddress("c@d");
    CPtrArray array;
    array.SetAtGrow(1, &address);
    array.SetAtGrow(3, &address);
    EXPECT_EQ(doc.AddToAddresses(array), 1);
    EXPECT_EQ(doc.AddToAddresses(std::vector<CAddress>{CAddress("", "", "e@f")}), 1);
    address.Clear();
    ASSERT_EQ(doc.GetToAddressSize(), 4u);
    EXPECT_EQ(doc.GetToAddress(0)->GetMailAddress(), "a@b");
    EXPECT_EQ(doc.GetToAddress(0)->GetGroupName(), "g");
    EXPECT_EQ(doc.GetToAddress(2)->GetMailAddress(), "c@d");
    EXPECT_EQ(doc.GetToAddress(3)->GetMailAddress(), "e@f");
}

CString TempPathOf(const CMailDoc& doc) {
    CString path("old");
    doc.GetTempPathA(path);
    return path;
}

TEST(MailDocFolder, OwnsOnlyADirectoryThatItMade) {
    const CTempFolder folder;
    CMailDoc doc;
    EXPECT_EQ(doc.SetTempPath(folder.Path()), 0);
    EXPECT_EQ(doc.SetTempPath(folder.Path("missing\\own")), 0);
    EXPECT_EQ(TempPathOf(doc), "");
    EXPECT_NE(doc.SetTempPath(folder.Path("first")), 0);
    EXPECT_EQ(doc.SetTempPath(folder.Path()), 0);
    EXPECT_EQ(TempPathOf(doc), folder.Path("first"));
    EXPECT_NE(doc.SetTempPath(folder.Path("second")), 0);
    EXPECT_EQ(doc.IsModified(), 0);
    doc.ClearAll();
    EXPECT_TRUE(std::filesystem::exists(folder.Native() / "first"));
    EXPECT_FALSE(std::filesystem::exists(folder.Native() / "second"));
    doc.ClearAll();
}

TEST(MailDocFolder, GoesWithItsFilesButKeepsDirectoriesAndWhatLinksPointTo) {
    const CTempFolder folder;
    WriteWholeFile(folder.Native() / "outside", "x");
    auto doc = std::make_unique<CMailDoc>();
    ASSERT_NE(doc->SetTempPath(folder.Path("own")), 0);
    const auto own = folder.Native() / "own";
    WriteWholeFile(own / "\xE8\xA1\xA8.txt", "x");      // 表
    WriteWholeFile(own / "\xF0\x9F\x98\x80.txt", "x");  // a name that code page 932 cannot hold
    WriteWholeFile(own / ".hidden", "x");
    std::filesystem::create_symlink(folder.Native() / "outside", own / "link");
    doc->SetFiles({{folder.Path("outside"), ""}});
    doc.reset();
    EXPECT_FALSE(std::filesystem::exists(own));
    EXPECT_TRUE(std::filesystem::exists(folder.Native() / "outside"));

    CMailDoc second;
    ASSERT_NE(second.SetTempPath(folder.Path("own")), 0);
    std::filesystem::create_directory(own / "below");
    WriteWholeFile(own / "below" / "kept", "x");
    WriteWholeFile(own / "gone", "x");
    second.ClearAll();
    EXPECT_EQ(TempPathOf(second), "");
    EXPECT_FALSE(std::filesystem::exists(own / "gone"));
    EXPECT_TRUE(std::filesystem::exists(own / "below" / "kept"));
}

TEST(MailDocFolder, ClearAllEmptiesTheLetterAndKeepsTheSender) {
    CMailDoc doc;
    doc.SetFromAddress(CAddress("", "", "s@x"));
    doc.SetOriginalSummary("summary");
    doc.SetSubject("subject");
    doc.SetSignature("signature");
    doc.SetFiles({{"x", "y"}});
    doc.AddBccAddress(CAddress());
    doc.ClearAll();
    std::vector<CMailDoc::FileInfo> files(1);
    doc.GetFiles(files);
    EXPECT_TRUE(files.empty());
    CString text("old");
    doc.GetSubject(text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(Letter(doc), "");
    EXPECT_EQ(doc.GetBccAddressSize(), 0u);
    EXPECT_EQ(doc.IsModified(), 0);
    doc.GetOriginalSummary(text);
    EXPECT_EQ(text, "summary");
    CAddress from;
    doc.GetFromAddress(from);
    EXPECT_EQ(from.GetMailAddress(), "s@x");
}

TEST(MailDocSize, CountsBodyAndFiles) {
    const CTempFolder folder;
    CMailDoc doc;
    EXPECT_EQ(doc.GetMailSize(), 4u);
    WriteWholeFile(folder.Native() / "f", std::string(1000, 'x'));
    WriteWholeFile(folder.Native() / "huge", "");
    std::filesystem::resize_file(folder.Native() / "huge", 3'000'000'000);
    doc.SetBody(CString('x', 54));
    doc.SetDear("not counted");
    doc.SetFiles({{folder.Path("f"), ""}, {folder.Path("missing"), ""}});
    EXPECT_EQ(doc.GetMailSize(), 78u + 1372u + 4u);
    doc.SetFiles({{folder.Path("huge"), ""}, {folder.Path("huge"), ""}});
    EXPECT_EQ(doc.GetMailSize(), 4294967295u);
}

}  // namespace
