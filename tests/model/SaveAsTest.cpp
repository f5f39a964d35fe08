#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <tests/FixedSystem.h>
#include <tests/GoldenFile.h>
#include <tests/TempFolder.h>
#include <tests/support/ScriptedWindowSystem.h>
#include <tests/writer/MessageStreams.h>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/windows/FileDialog.h>
#include <mailengine/support/platform/windows/Wnd.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

class SaveAs : public testing::Test {
protected:
    SaveAs() {
        m_parent.Attach(m_windows.HostWindow("host"));
        WriteWholeFile(m_folder.Native() / "a.bin", std::string(5400, 'x'));
        m_doc.SetSubject("subject");
        m_doc.SetFiles({{m_folder.Path("a.bin"), ""}});
    }
    ~SaveAs() override { m_parent.Detach(); }

    int SaveTo(const CString& path) {
        m_windows.paths = {std::string(path.View())};
        return m_doc.SaveAs(&m_parent, &m_dialog);
    }
    std::string Saved() const { return ReadWholeFile(m_folder.Native() / "m.eml"); }
    bool Stands() const { return std::filesystem::exists(m_folder.Native() / "m.eml"); }
    std::string Box(const char* text) const {
        return std::string("box host 48 ") + texts::kSaveCaption + "|" + text + "\n";
    }

    CFixedSystem m_system;
    CTempFolder m_folder;
    ScriptedWindowSystem m_windows;
    CWnd m_parent;
    CFileDialog m_dialog{0};
    CMailDoc m_doc;
};

TEST_F(SaveAs, WritesTheWholeMessageUnderADialog) {
    CMemoryStream stream;
    CProgressCallback unseen("", 1, nullptr);
    CString error;
    ASSERT_EQ(CEMailWriter(&stream, m_doc, unseen).Write(error), 1);
    EXPECT_EQ(SaveTo(m_folder.Path("m.eml")), 1);
    EXPECT_EQ(Saved(), stream.Text());
    EXPECT_EQ(m_doc.IsModified(), 0);
    EXPECT_EQ(m_windows.DialogCount(), 0u);
    EXPECT_TRUE(m_windows.Enabled(m_parent.m_hWnd));
    EXPECT_EQ(m_system.sleeps.size(), 1u);
    const std::string calls = m_windows.TakeCalls();
    EXPECT_NE(calls.find(std::string("text dialog1 ") + texts::kSaving + "\n"), std::string::npos);
    EXPECT_NE(calls.find("enable host 0\n"), std::string::npos);
    EXPECT_EQ(calls.find("box "), std::string::npos);
}

TEST_F(SaveAs, DoesNothingWithoutAWindowADialogOrAChoice) {
    EXPECT_EQ(m_doc.SaveAs(nullptr, &m_dialog), 0);
    EXPECT_EQ(m_doc.SaveAs(&m_parent, nullptr), 0);
    EXPECT_EQ(m_windows.TakeCalls(), "");
    EXPECT_EQ(m_doc.SaveAs(&m_parent, &m_dialog), 1);
    EXPECT_EQ(m_doc.IsModified(), 1);
    EXPECT_FALSE(Stands());
}

TEST_F(SaveAs, TellsThatTheFileCannotBeMade) {
    std::filesystem::create_directory(m_folder.Native() / "folder");
    std::filesystem::create_symlink(m_folder.Native() / "a.bin", m_folder.Native() / "link");
    for (const char* name : {"missing\\m.eml", "folder", "a.bin", "folder\\..\\a.bin", "link"}) {
        m_windows.TakeCalls();
        EXPECT_EQ(SaveTo(m_folder.Path(name)), 0) << name;
        EXPECT_EQ(m_windows.TakeCalls("box "), Box(texts::kSaveCreateFailed)) << name;
        EXPECT_EQ(m_doc.IsModified(), 1) << name;
    }
    EXPECT_EQ(ReadWholeFile(m_folder.Native() / "a.bin"), std::string(5400, 'x'));
}

// The disk is full at each of several places of the message, its last bytes among them, which go out by Close.
TEST_F(SaveAs, NeverKeepsAFileWithBytesMissing) {
    EXPECT_EQ(SaveTo(m_folder.Path("m.eml")), 1);
    const rlim_t size = Saved().size();
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    for (const rlim_t room : {rlim_t{0}, rlim_t{100}, size / 2, size - 1, size}) {
        m_windows.TakeCalls();
        m_doc.SetModifiedFlag(1);
        const rlimit full = {room, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
        const int result = SaveTo(m_folder.Path("m.eml"));
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(result, 1) << room;
        EXPECT_EQ(m_windows.TakeCalls("box "), room < size ? Box(texts::kSaveFailed) : "") << room;
        EXPECT_EQ(Stands(), room >= size) << room;
        EXPECT_EQ(m_doc.IsModified(), room < size ? 1 : 0) << room;
    }
}

TEST_F(SaveAs, CancelsWithoutAWordAtEachCallback) {
    int seen = 0;
    int pressedAt = 0;
    m_windows.whenNoted = [&](const std::string& line) {
        if (line.starts_with("position ") && ++seen == pressedAt) m_windows.PostCommand(IDCANCEL);
    };
    constexpr int kCallbacks = 11;  // one for the text, ten for the file
    for (pressedAt = 1; pressedAt <= kCallbacks; ++pressedAt) {
        seen = 0;
        m_windows.TakeCalls();
        m_doc.SetModifiedFlag(1);
        EXPECT_EQ(SaveTo(m_folder.Path("m.eml")), 1);
        const bool cancelled = pressedAt < kCallbacks;  // behind the last one nothing notices any more
        EXPECT_EQ(Stands(), !cancelled) << pressedAt;
        EXPECT_EQ(m_doc.IsModified(), cancelled ? 1 : 0) << pressedAt;
        EXPECT_EQ(m_windows.TakeCalls("box "), "") << pressedAt;
        EXPECT_TRUE(m_windows.Enabled(m_parent.m_hWnd)) << pressedAt;
    }
}

}  // namespace
