#include <cerrno>
#include <tests/FixedSystem.h>
#include <tests/GoldenFile.h>
#include <tests/TempFolder.h>
#include <tests/support/ScriptedWindowSystem.h>
#include <tests/writer/MessageStreams.h>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SendWhole.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/writer/EMailWriter.h>

#include "ScriptedPeer.h"
#include "TransportTesting.h"

namespace {

constexpr const SendLimits* kWhole = &kSendLimits;
constexpr const SendLimits* kAsWritten = nullptr;  // in place of limits: the plain Send
constexpr char kDot[] = "\r\n.\r\n";
constexpr char kReady[] = "220|250|250|250|354|";  // ... up to the data of a mail to one recipient

class Send : public testing::Test {
protected:
    Send() {
        m_doc.SetFromAddress(CAddress("", "Sender", "s@x"));
        m_doc.AddToAddress(CAddress("", "", "to@x"));
        m_doc.SetBody("text\r\n");
    }
    void Attach(const char* name, const std::string& content) {
        WriteWholeFile(m_folder.Native() / name, content);
        m_files.push_back({m_folder.Path(name), ""});
        m_doc.SetFiles(m_files);
    }
    // Sends with a dialog up. The result and the error, one text.
    std::string Run(int port, const SendLimits* limits) {
        m_doc.SetSendServer("127.0.0.1", port);
        m_progress.Start(1000);
        CString error = "as given";
        const int result = limits == &kSendLimits ? CMailSendRecv::SendWhole(m_doc, m_progress, error)
                           : limits == kAsWritten ? CMailSendRecv::Send(m_doc, m_progress, error)
                                                  : SendWhole(m_doc, m_progress, error, *limits);
        return std::to_string(result) + " " + Bytes(error);
    }
    std::string Message() {
        CMemoryStream memory;
        CProgressCallback progress("", 1, nullptr);
        CString error;
        EXPECT_TRUE(CEMailWriter(&memory, m_doc, progress).Write(error));
        return memory.Text();
    }

    CFixedSystem m_system;
    ScriptedWindowSystem m_windows;
    CTempFolder m_folder;
    CMailDoc m_doc;
    std::vector<CMailDoc::FileInfo> m_files;
    CProgressCallback m_progress{"", 1, nullptr};
};

TEST_F(Send, GivesTheServerTheMessageLineForLine) {
    std::string mixes;
    for (int number = 0; number < 4096; ++number)
        mixes += std::string(1, ".\r\na"[number & 3]) + ".\r\na"[number >> 2 & 3] + ".\r\na"[number >> 4 & 3];
    m_doc.SetBody(CString(mixes.c_str()) + "\r");
    m_doc.AddCcAddress(CAddress("", "", "cc@x"));
    m_doc.AddBccAddress(CAddress("", "", "to@x"));
    m_doc.SetSenderBccFlg(1);
    Attach("mail.eml", mixes + "\n.");
    Attach("file.bin", std::string(5000, '\xFF'));
    for (const SendLimits* limits : {kWhole, kAsWritten}) {
        ScriptedPeer peer("220|250|250|250|250|250|250|354|250|221");
        EXPECT_EQ(Run(peer.port, limits), "1 as given");
        EXPECT_EQ(
            Shown(peer.Received()),
            Shown("HELO pc.example.test\r\nMAIL FROM:<s@x>\r\nRCPT TO:<to@x>\r\nRCPT TO:<cc@x>\r\nRCPT TO:<to@x>\r\n"
                  "RCPT TO:<s@x>\r\nDATA\r\n" +
                  MadeTransparent(Message()) + kDot + "QUIT\r\n"));
        EXPECT_FALSE(peer.cameEarly);
        EXPECT_EQ(m_windows.DialogCount(), 0U);
    }
}

TEST_F(Send, ChecksTheDocumentBeforeItConnects) {
    ScriptedPeer peer("220");
    m_files = {{m_folder.Path("gone"), ""}, {"", ""}};
    m_doc.SetFiles(m_files);
    const std::string gone = texts::kAttachmentOpenFailed + std::string(texts::kAttachmentsMissing) +
                             Bytes(m_folder.Path("gone")) + "\r\n\r\n";
    EXPECT_EQ(Run(peer.port, kWhole), "0 " + gone);
    EXPECT_EQ(Run(-1, kWhole), "0 SendPort is invalid.");
    for (const char* server : {"127.0.0.1\0x", "127.0.0.1\r\n", "\n127.0.0.1"}) {
        m_doc.SetSendServer(CString(std::string_view(server, 11)), peer.port);
        CString error;
        EXPECT_FALSE(CMailSendRecv::Send(m_doc, m_progress, error));
        EXPECT_EQ(Bytes(error), texts::kAddressUnusable);
    }
    CAddress cut;
    cut.FromText(CString("s@x\0y", 5));
    m_doc.SetFromAddress(cut);
    EXPECT_EQ(Run(peer.port, kAsWritten), std::string("0 ") + texts::kAddressUnusable);
    m_doc.SetFromAddress(CAddress());
    EXPECT_EQ(Run(peer.port, kAsWritten), "0 Sender is empty.");
    m_doc.SetSendServer("", -1);
    CString error;
    EXPECT_FALSE(CMailSendRecv::Send(m_doc, m_progress, error));
    EXPECT_EQ(Bytes(error), "SendServer is empty.");
    EXPECT_EQ(peer.Received(), "");
    EXPECT_EQ(m_windows.DialogCount(), 1U) << "it is the caller's";

    // Send as it is told delivers an empty mail in place of the one with missing files.
    ScriptedPeer empty(kReady + std::string("250|221"));
    m_doc.SetFromAddress(CAddress("", "", "s@x"));
    EXPECT_EQ(Run(empty.port, kAsWritten), "0 " + gone);
    EXPECT_TRUE(empty.Received().ends_with(std::string("DATA\r\n") + kDot + "QUIT\r\n"));
}

TEST_F(Send, TellsWhatBecameOfTheMail) {
    Attach("file.bin", std::string(4 << 20, 'x'));
    const std::string taken = "1 as given";
    const std::string writing = "0 " + std::string(texts::kFileContentFailed) + Bytes(m_files[0].Path);
    const struct {
        std::string script, whole, asWritten;
        std::size_t dialogs;  // left standing: the mail was not even opened
    } rows[] = {
        {"220|250|250|550 who?\r\n|221", "0 550 who?\r\n", "0 550 who?\r\n", 1},
        {"220|250|250|250|<close>", "0 ", "0 ", 1},
        {kReady + std::string("552 too big\r\n|221"), "0 552 too big\r\n", taken, 0},
        {kReady + std::string("<close>"), "0 ", taken, 0},
        {kReady + std::string("<reset>"), "0 " + SocketText("Recv", ECONNRESET), taken, 0},
        {kReady + std::string("250|500"), taken, taken, 0},
        // A reply in two pieces has put the dialogue out of step: another one would pass for the verdict.
        {"220-a|220 b|250 pc|250 s|250 to|354 go\r\n552 full|221", "0 250 to", taken, 0},
        {"220|250|250|250|354" + std::string(509, '-') + "552 full|250|221", "0 552 full", taken, 0},
        {kReady + std::string("354 go|221"), "0 354 go", taken, 0},
        {kReady + std::string("<cut>"), "0 " + SocketText("Send", ECONNRESET), writing, 0},
        {kReady + std::string("<cut>421 going down\r\n"), "0 421 going down\r\n", writing, 0},
    };
    for (const auto& row : rows) {
        m_doc.SetFiles(row.script.find("<cut>") == std::string::npos ? std::vector<CMailDoc::FileInfo>() : m_files);
        ScriptedPeer whole(row.script), asWritten(row.script);
        EXPECT_EQ(Run(whole.port, kWhole), row.whole) << row.script;
        EXPECT_EQ(m_windows.DialogCount(), row.dialogs) << row.script;
        EXPECT_EQ(Run(asWritten.port, kAsWritten), row.asWritten) << row.script;
        EXPECT_EQ(m_windows.DialogCount(), row.dialogs) << row.script;
    }
}

TEST_F(Send, LetsNobodyGetHalfAMailUnlessAsked) {
    Attach("file.bin", std::string(4 << 20, 'x'));
    for (const bool whole : {true, false}) {
        ScriptedPeer peer(kReady + std::string("250|221"));
        m_windows.whenNoted = [&, posted = false](const std::string& line) mutable {
            if (!posted && line.ends_with(".1086 100")) posted = true, m_windows.PostCommand(IDCANCEL);
        };
        EXPECT_EQ(Run(peer.port, whole ? kWhole : kAsWritten),
                  whole ? "0 as given" : "0 " + std::string(texts::kFileContentFailed) + Bytes(m_files[0].Path));
        EXPECT_TRUE(m_progress.UserCanceled());
        const std::string received = peer.Received();
        EXPECT_EQ(received.find(kDot) != std::string::npos, !whole);
        EXPECT_EQ(received.ends_with("QUIT\r\n"), !whole);
    }
    // A cancel from before the call counts, and explains itself.
    m_doc.SetSendServer("", 25);
    CString error = "as given";
    EXPECT_FALSE(CMailSendRecv::SendWhole(m_doc, m_progress, error));
    EXPECT_EQ(Bytes(error), "as given");
}

TEST_F(Send, EndsAWaitAtItsLimitAndWhenTheUserCancels) {
    const char* const turns[] = {"", "220|", "250|", "250|", "250|", "354|"};
    Attach("file.bin", std::string(8 << 20, 'x'));
    std::string script;
    for (int step = CSmtp::kGreeting; step <= CSmtp::kDataEnd; ++step) {
        const bool data = step == CSmtp::kDataBlock;
        m_doc.SetFiles(data ? m_files : std::vector<CMailDoc::FileInfo>());
        ScriptedPeer tardy(script + (data ? "<stall>" : "<silent>")), silent(script + (data ? "<stall>" : "<silent>"));
        SendLimits limits = kSendLimits;
        limits[static_cast<std::size_t>(step)] = 0;
        EXPECT_EQ(Run(tardy.port, &limits), "0 " + SocketText(data ? "Send" : "Recv", ETIMEDOUT)) << step;

        m_windows.whenIdle = [&] {
            if (silent.isSilent.exchange(false)) m_windows.PostCommand(IDCANCEL);
        };
        EXPECT_EQ(Run(silent.port, kWhole), "0 as given") << step;
        m_windows.whenIdle = nullptr;
        EXPECT_TRUE(m_progress.UserCanceled()) << step;
        EXPECT_EQ(silent.Received().find(kDot) != std::string::npos, step == CSmtp::kDataEnd) << step;
        if (step <= CSmtp::kDataStart) script += turns[step];
    }
}

TEST_F(Send, LetsNobodyCancelBehindTheVerdict) {
    for (const std::string verdict : {"250 ok", "552 full"}) {
        ScriptedPeer peer(kReady + verdict + "|<silent>");
        struct : ScriptedWindowSystem {
            int MessageWaits() override {
                if (quitting->exchange(false)) PostCommand(IDCANCEL);
                return ScriptedWindowSystem::MessageWaits();
            }
            std::atomic<bool>* quitting = nullptr;
        } pressing;
        pressing.quitting = &peer.isSilent;
        SendLimits limits = kSendLimits;
        limits[CSmtp::kQuit] = 4 * CSocketWait::kAskMilliseconds;
        EXPECT_EQ(Run(peer.port, &limits), verdict == "250 ok" ? "1 as given" : "0 552 full");
        EXPECT_FALSE(m_progress.UserCanceled() || peer.isSilent);
    }
}

TEST_F(Send, KeepsMessagesMovingWhileItWaits) {
    ScriptedPeer peer("<silent>|220|250|250|250|354|250|221");
    m_windows.Post([&] { m_windows.Post([&] { peer.Speak(); }); });
    EXPECT_EQ(Run(peer.port, kAsWritten), "1 as given");
}

}  // namespace
