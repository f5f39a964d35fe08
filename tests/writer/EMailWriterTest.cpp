#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <tests/FixedSystem.h>
#include <tests/GoldenFile.h>
#include <tests/TempFolder.h>
#include <tests/support/ScriptedWindowSystem.h>
#include <tests/writer/MessageStreams.h>
#include <utility>
#include <vector>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

using std::string_literals::operator""s;

// Code page 932 of the texts that tests/data/written/make.py writes as they read.
constexpr char kYamada[] = "\x8E\x52\x93\x63\x91\xBE\x98\x59";  // 山田太郎
constexpr char kLongName[] =                                    // とても長い名前の人です
    "\x82\xC6\x82\xC4\x82\xE0\x92\xB7\x82\xA2\x96\xBC\x91\x4F\x82\xCC\x90\x6C\x82\xC5\x82\xB7";
constexpr char kSubject[] =  // 日本語の件名を入力します
    "\x93\xFA\x96\x7B\x8C\xEA\x82\xCC\x8C\x8F\x96\xBC\x82\xF0\x93\xFC\x97\xCD\x82\xB5\x82\xDC\x82\xB7";
constexpr char kKanaText[] =  // こんにちは, 半角ｶﾞとｶとﾅﾞ, abc
    "\x82\xB1\x82\xF1\x82\xC9\x82\xBF\x82\xCD\r\n\x94\xBC\x8A\x70\xB6\xDE\x82\xC6\xB6\x82\xC6\xC5\xDE\r\nabc";
constexpr char kFileName[] =  // 添付ファイルの名前.EML
    "\x93\x59\x95\x74\x83\x74\x83\x40\x83\x43\x83\x8B\x82\xCC\x96\xBC\x91\x4F.EML";
constexpr char kBodyText[] = "\x96\x7B\x95\xB6";  // 本文

class EMailWriter : public testing::Test {
protected:
    int Write() { return WriteTo(m_stream); }
    int WriteTo(COutputStream& stream) { return CEMailWriter(&stream, m_doc, m_progress).Write(m_error); }

    void Attach(const char* name, const std::string& content) {
        m_files.push_back({m_folder.Path(name), ""});
        m_doc.SetFiles(m_files);
        CFile file;
        ASSERT_NE(file.Open(m_files.back().Path, CFile::modeCreate | CFile::modeWrite | CFile::typeBinary), 0);
        file.Write(content.data(), content.size());
        file.Close();
    }

    void FillPlainLetter() {
        m_doc.SetFromAddress(CAddress("", "Sender", "s@example.test"));
        m_doc.SetReplyAddress(CAddress("", "", "reply@example.test"));
        m_doc.AddToAddress(CAddress("", "", "a@example.test"));
        m_doc.AddToAddress(CAddress("", "B \"b\"", "b@example.test"));
        m_doc.AddToAddress(CAddress("", "", "c@example.test"));
        m_doc.AddCcAddress(CAddress("", "", "d@example.test"));
        m_doc.AddBccAddress(CAddress("", "", "e@example.test"));
        m_doc.SetSenderBccFlg(1);
        m_doc.SetMailerName("mailer 1.0");
        m_doc.SetInReplyTo("<1@x>");
        m_doc.SetReferences("<0@x>\r\n\t<1@x>");
        m_doc.SetSubject(CString('s', 500));
        m_doc.SetDear("Dear");
        m_doc.SetGreeting("Hello");
        m_doc.SetBody(".\r\nlast");
        m_doc.SetClosing("Bye");
        m_doc.SetSignature("-- \r\nS");
    }

    CFixedSystem m_system;
    CTempFolder m_folder;
    CMailDoc m_doc;
    CProgressCallback m_progress{"", 1, nullptr};
    CMemoryStream m_stream;
    CString m_error = "untouched";
    std::vector<CMailDoc::FileInfo> m_files;
};

std::string Counted(std::size_t size) {
    std::string bytes(size, 0);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i % 251);
    return bytes;
}

TEST_F(EMailWriter, WritesAnEmptyDocument) {
    EXPECT_EQ(Write(), 1);
    EXPECT_EQ(m_error, "untouched");
    ExpectGolden("written/empty-document.eml", m_stream.Text());
}

TEST_F(EMailWriter, WritesAPlainLetter) {
    FillPlainLetter();
    EXPECT_EQ(Write(), 1);
    ExpectGolden("written/plain-letter.eml", m_stream.Text());
    // A field is one call, so that a stream never holds half of one.
    EXPECT_THAT(m_stream.calls, testing::Contains("Subject: " + std::string(500, 's') + "\r\n"));
}

TEST_F(EMailWriter, WritesAJapaneseLetter) {
    m_doc.SetFromAddress(CAddress("", kYamada, "s@example.test"));
    m_doc.AddToAddress(CAddress("", kLongName, "a@example.test"));
    m_doc.AddToAddress(CAddress("", "", "b@example.test"));
    m_doc.SetSubject(kSubject);
    m_doc.SetBody(kKanaText);
    EXPECT_EQ(Write(), 1);
    ExpectGolden("written/japanese-letter.eml", m_stream.Text());
}

TEST_F(EMailWriter, UsesAVoicedMarkAtTheBorderOfTwoWordsOnce) {
    CString subject;
    for (int i = 0; i < 15; ++i)
        subject += "\xB6\xC5";  // ｶﾅ
    subject += "\xB6\xDE";      // ｶﾞ, cut between the two
    m_doc.SetSubject(subject);
    EXPECT_EQ(Write(), 1);
    ExpectGolden("written/half-width-kana-subject.eml", m_stream.Text());
}

TEST_F(EMailWriter, WritesAttachedFilesOfEachSizeAroundALine) {
    m_doc.SetFromAddress(CAddress("", "", "s@example.test"));
    m_doc.SetSubject("files");
    m_doc.SetBody("text\r\n");
    for (const std::size_t size : {0u, 1u, 53u, 54u, 540u, 541u})
        Attach((std::to_string(size) + ".bin").c_str(), Counted(size));
    Attach(kFileName, "");
    EXPECT_EQ(Write(), 1);
    ExpectGolden("written/attachments-at-line-borders.eml", m_stream.Text());
}

TEST_F(EMailWriter, LosesWhatFollowsANulInAPieceOfAnAttachedMail) {
    m_doc.SetFromAddress(CAddress("", "", "s@example.test"));
    m_doc.SetSubject("mail");
    m_doc.SetBody(kBodyText);
    Attach("m.eml", std::string(1000, 'a') + '\0' + std::string(22, 'x') + std::string(20, 'e'));
    Attach("empty.eml", "");
    EXPECT_EQ(Write(), 1);
    ExpectGolden("written/attached-mail-with-nul.eml", m_stream.Text());
}

TEST_F(EMailWriter, NamesTheMachineAsFarAsAnIdentifierHoldsIt) {
    const std::pair<const char*, const char*> rows[] = {{nullptr, "localhost"},
                                                        {"a.b-c_d", "a.b-c_d"},
                                                        {"\xB1.x", "\xB1.x"},
                                                        {"pc\r\nBcc: x@y", "pc"},
                                                        {">", "localhost"}};
    for (const auto& [hostName, named] : rows) {
        m_system.hostName = hostName;
        CMemoryStream stream;
        EXPECT_EQ(WriteTo(stream), 1);
        EXPECT_NE(stream.Text().find("\r\nMessage-ID: <20261119103049.4660@"s + named + ">\r\nX-Mailer"),
                  std::string::npos);
    }
}

TEST_F(EMailWriter, WritesTheZoneOfStandardTime) {
    const std::pair<std::int32_t, const char*> rows[] = {
        {-32400, " +0900\r\n"}, {12600, " -0330\r\n"}, {-19800, " +0530\r\n"}, {0, " +0000\r\n"},
        {1800, " +0030\r\n"},   {-1800, " +0030\r\n"}, {36000, " -1000\r\n"}};
    for (const auto& [west, zone] : rows) {
        m_system.fields.secondsWest = west;
        CMemoryStream stream;
        EXPECT_EQ(WriteTo(stream), 1);
        EXPECT_NE(stream.Text().find("Date: Thu, 19 Nov 2026 10:30:49"s + zone), std::string::npos) << zone;
    }
}

TEST_F(EMailWriter, EndsAValueAtItsNulAndLeavesOutFieldsWithoutAnAddress) {
    CAddress from;
    from.FromText(CString("\x8E\x52 <a@b\0c>", 10));
    m_doc.SetFromAddress(from);
    m_doc.SetReplyAddress(CAddress("", "only a name", ""));
    m_doc.SetSenderBccFlg(1);
    m_doc.SetSubject(CString("\x8E\x52\0\x8E\x52", 5));
    EXPECT_EQ(Write(), 1);
    EXPECT_EQ(m_stream.Text().find("From: =?iso-2022-jp?B?GyRCOzMbKEI=?= <a@b>\r\nBcc: "), 0u);
    EXPECT_NE(m_stream.Text().find("\r\nSubject: =?iso-2022-jp?B?GyRCOzMbKEI=?=\r\n"), std::string::npos);
}

TEST_F(EMailWriter, NamesEveryMissingFileBeforeItWritesAByte) {
    Attach("1.txt", "1");
    Attach("3.txt", "3");
    m_files.insert(m_files.begin() + 1, {m_folder.Path("missing.txt"), ""});
    m_files.push_back({"", ""});
    m_doc.SetFiles(m_files);
    EXPECT_EQ(Write(), 0);
    EXPECT_EQ(m_error,
              CString(texts::kAttachmentOpenFailed) + texts::kAttachmentsMissing + m_files[1].Path + "\r\n\r\n");
    EXPECT_TRUE(m_stream.calls.empty());
}

// The stream takes nothing from its n-th call on, for each n: the result, the text for the user and what went out
// before must fit the place.
TEST_F(EMailWriter, StopsAtTheFirstFailedCall) {
    m_doc.SetBody(kBodyText);
    Attach("f.bin", Counted(600));
    Attach("m.eml", "mail");
    ASSERT_EQ(Write(), 1);
    const std::vector<std::string> whole = m_stream.calls;
    const std::vector<std::pair<std::string, CString>> stages = {
        {"From: ", texts::kHeaderFailed},
        {"MIME-Version", "untouched"},
        {"Content-Type: text", texts::kBodyFailed},
        {"Content-Type: application", texts::kFileFieldsFailed},
        {"AAECAwQ", CString(texts::kFileContentFailed) + m_files[0].Path},
        {"Content-Type: message", texts::kMailFieldsFailed},
        {"mail", CString(texts::kMailContentFailed) + m_files[1].Path},
    };
    std::size_t stage = 0;
    for (std::size_t n = 1; n <= whole.size(); ++n) {
        if (stage + 1 < stages.size() && whole[n - 1].rfind(stages[stage + 1].first, 0) == 0) ++stage;
        if (whole[n - 1] == "\r\n" || whole[n - 1].starts_with("\r\n--") || whole[n - 1].starts_with("--")) continue;
        m_error = "untouched";
        CMemoryStream stream(n);
        EXPECT_EQ(WriteTo(stream), 0) << n;
        EXPECT_EQ(m_error, stages[stage].second) << n << Shown(whole[n - 1]);
        EXPECT_LE(stream.calls.size(), n + 4) << n;  // a line's end, a mail's end and the closing delimiter at most
    }
    EXPECT_EQ(stage + 1, stages.size());
}

// Cancel is pressed while the n-th Callback dispatches messages, and noticed by the next one.
TEST_F(EMailWriter, StopsAtCancelWhereverItComes) {
    ScriptedWindowSystem windows;
    m_doc.SetBody("text");
    Attach("f.bin", Counted(5400));
    const CString fileFailed = CString(texts::kFileContentFailed) + m_files[0].Path;
    int seen = 0;
    int pressedAt = 0;
    windows.whenNoted = [&](const std::string& line) {
        if (line.starts_with("position ") && ++seen == pressedAt) windows.PostCommand(IDCANCEL);
    };
    for (pressedAt = 1; pressedAt <= 10; ++pressedAt) {  // the text's Callback and the first nine of the file's ten
        seen = 0;
        m_progress.Start(m_doc.GetMailSize());
        CMemoryStream stream;
        EXPECT_EQ(WriteTo(stream), 0) << pressedAt;
        EXPECT_EQ(m_error, fileFailed) << pressedAt;
        EXPECT_EQ(m_progress.UserCanceled(), 1) << pressedAt;
        const auto isLine = [](const std::string& call) { return call.size() == 72; };
        EXPECT_EQ(std::count_if(stream.calls.begin(), stream.calls.end(), isLine), 10 * pressedAt);
        EXPECT_TRUE(stream.Text().ends_with("--\r\n")) << pressedAt;
    }
    m_progress.Start(m_doc.GetMailSize());
    platform::DeliverCommand(windows.Dialog(), IDCANCEL);
    CMemoryStream stream;
    EXPECT_EQ(WriteTo(stream), 0);
    EXPECT_EQ(m_error, texts::kBodyFailed);
    EXPECT_TRUE(stream.Text().ends_with("\r\n\r\ntext"));
}

}  // namespace
