// What the writer writes the parser reads back to the same document: generated documents, then the holes of the format,
// each as it is.
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/RoundTrip.h>
#include <tests/TempFolder.h>

namespace {

TEST(RoundTrip, GeneratedDocumentsSurvive) {
    std::mt19937 random(20030401);
    for (int round = 0; round < 400 && !testing::Test::HasFailure(); ++round) {
        std::string bytes(random() % 4000, '\0');
        for (char& c : bytes)
            c = static_cast<char>(random() & 0xFF);
        const CTempFolder sources, target;
        EXPECT_EQ(CRoundTrip(bytes, sources.Path(), target.Path()).Run(), "") << "round " << round;
    }
}

class Hole : public testing::Test {
protected:
    void Attach(const char* name, const std::string& content) {
        WriteWholeFile(m_folder.Native() / name, content);
        m_files.push_back({m_folder.Path(name), ""});
        m_document.SetFiles(m_files);
    }
    int WriteAndOpen() { return CEMailPerser().Perse(WriteToMemory(m_document), m_target.Path(), m_opened, 0); }
    std::vector<CMailDoc::FileInfo> Opened() {
        EXPECT_EQ(WriteAndOpen(), 1);
        std::vector<CMailDoc::FileInfo> files;
        m_opened.GetFiles(files);
        return files;
    }

    const CTempFolder m_folder, m_target;
    CMailDoc m_document, m_opened;
    std::vector<CMailDoc::FileInfo> m_files;
};

// The empty part's data would begin where the CRLF of the closing delimiter has been used up.
TEST_F(Hole, EmptyAttachmentFailsTheMessageWhereItIsLast) {
    Attach("empty.bin", "");
    EXPECT_EQ(WriteAndOpen(), 0);
    Attach("x.bin", "x");
    EXPECT_EQ(Opened().size(), 2U);
}

TEST_F(Hole, AttachedMailWithoutMimeVersionFailsTheMessage) {
    Attach("a.eml", "Subject: a\r\n\r\nx\r\n");
    EXPECT_EQ(WriteAndOpen(), 0);
}

TEST_F(Hole, EmptyAttachedMailFailsTheMessage) {
    Attach("a.eml", "");
    EXPECT_EQ(WriteAndOpen(), 0);
}

// The wire has no rows for them: the reader's pair is no character, and the text ends in front of it.
TEST_F(Hole, LeadBytesFromF0EndTheText) {
    m_document.SetSubject("a\xF0\x40\x82\xA0");
    m_document.SetBody("b\x82\xA0\xFC\x4B\x82\xA0");
    ASSERT_EQ(WriteAndOpen(), 1);
    CString text;
    m_opened.GetSubject(text);
    EXPECT_EQ(text, "a");
    m_opened.GetBody(text);
    EXPECT_EQ(text, "b\x82\xA0");
}

// A first word takes 14 bytes: the kana is the last of them, and its mark opens the next word.
TEST_F(Hole, VoicedMarkBehindAWordsEndStaysApart) {
    m_document.SetSubject("0123456789012\xB6\xDE");
    ASSERT_EQ(WriteAndOpen(), 1);
    CString text;
    m_opened.GetSubject(text);
    EXPECT_EQ(text, "0123456789012\x83\x4A\x81\x4A");  // カ゛, not ガ
}

TEST_F(Hole, FileNameEndsAtItsSemicolon) {
    Attach("a;b.txt", "x");
    EXPECT_EQ(Opened().at(0).Name, "a");
}

}  // namespace
