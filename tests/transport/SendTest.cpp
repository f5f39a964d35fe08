#include <cerrno>
#include <functional>
#include <regex>
#include <tests/FixedSystem.h>
#include <tests/GoldenFile.h>
#include <tests/TempFolder.h>
#include <tests/support/ScriptedWindowSystem.h>
#include <tests/writer/MessageStreams.h>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SendWhole.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/writer/EMailWriter.h>

#include "ScriptedPeer.h"
#include "TransportTesting.h"

namespace {

constexpr const CSendWait::Limits* kWhole = &kSendLimits;
constexpr const CSendWait::Limits* kAsWritten = nullptr;  // in place of limits: the plain Send
constexpr char kDot[] = "\r\n.\r\n";
constexpr char kReady[] = "220\r\n|250\r\n|250\r\n|250\r\n|354\r\n|";  // ... up to a mail's data

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
    // Sends with a dialog up: the result or the outcome, and the error or the text.
    std::string Run(int port, const CSendWait::Limits* limits) {
        m_doc.SetSendServer("127.0.0.1", port);
        m_progress.Start(1000);
        CString error = "as given";
        if (limits == kAsWritten) {
            const int result = CMailSendRecv::Send(m_doc, m_progress, error);
            return std::to_string(result) + " " + Bytes(error);
        }
        m_result = SendWhole(m_doc, m_blind, m_progress, *limits);
        return std::to_string(m_result.outcome) + " " + Bytes(m_result.text);
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
    CStringArray m_blind;
    CMailSendRecv::Result m_result;
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
    m_blind = Array({"blind@x", "to@X"});
    for (const CSendWait::Limits* limits : {kWhole, kAsWritten}) {
        const std::string again = "RCPT TO:<to@x>\r\n", sender = "RCPT TO:<s@x>\r\n", ok = "250\r\n|";
        const std::string rest = limits == kWhole ? sender + "RCPT TO:<blind@x>\r\n" : again + sender;
        ScriptedPeer peer("220\r\n|" + ok + ok + ok + ok + ok + ok + "354\r\n|250\r\n|221\r\n");
        EXPECT_EQ(Run(peer.port, limits), limits == kWhole ? "1 " : "1 as given");
        EXPECT_EQ(Shown(peer.Received()),
                  Shown("HELO pc.example.test\r\nMAIL FROM:<s@x>\r\nRCPT TO:<to@x>\r\nRCPT TO:<cc@x>\r\n" + rest +
                        "DATA\r\n" + MadeTransparent(Message()) + kDot + "QUIT\r\n"));
        EXPECT_FALSE(peer.cameEarly);
        EXPECT_EQ(m_windows.DialogCount(), 0U);
    }
}

TEST_F(Send, ChecksTheDocumentBeforeItConnects) {
    ScriptedPeer peer("220");
    m_files = {{m_folder.Path("gone"), ""}, {"", ""}};
    m_doc.SetFiles(m_files);
    m_blind = Array({"b@x\r\nDATA"});
    EXPECT_EQ(Run(peer.port, kWhole), std::string("0 ") + texts::kAddressUnusable);
    m_blind.SetSize(0);
    const std::string gone = texts::kAttachmentOpenFailed + std::string(texts::kAttachmentsMissing) +
                             Bytes(m_folder.Path("gone")) + "\r\n\r\n";
    EXPECT_EQ(Run(peer.port, kWhole), "0 " + gone);
    EXPECT_EQ(Run(-1, kWhole), "0 SendPort is invalid.");
    for (const char* server : {"127.0.0.1\0x", "127.0.0.1\r\n", "\n127.0.0.1"}) {
        m_doc.SetSendServer(CString(std::string_view(server, 11)), peer.port);
        CString error;
        EXPECT_FALSE(CMailSendRecv::Send(m_doc, m_progress, error));
        EXPECT_EQ(Bytes(error), texts::kServerUnusable);
    }
    CAddress cut;
    cut.FromText(CString("s@x\0y", 5));
    m_doc.SetFromAddress(cut);
    EXPECT_EQ(Run(peer.port, kAsWritten), std::string("0 ") + texts::kAddressUnusable);
    m_doc.ClearToAddresses();
    EXPECT_EQ(Run(peer.port, kWhole), std::string("0 ") + texts::kAddressUnusable);
    m_doc.SetFromAddress(CAddress("", "", "s@x"));
    EXPECT_EQ(Run(peer.port, kWhole), std::string("0 ") + texts::kNoRecipients);
    for (int i = 0; i <= CSmtp::kMaxRecipients; ++i)
        m_doc.AddToAddress(CAddress("", "", CString(("to" + std::to_string(i) + "@x").c_str())));
    EXPECT_EQ(Run(peer.port, kWhole), std::string("0 ") + texts::kTooManyRecipients);
    m_doc.ClearToAddresses();
    m_doc.AddToAddress(CAddress("", "", "to@x"));
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

// What the plain way makes of it: only the stages before the data count.
TEST_F(Send, AsWrittenTellsWhatBecameOfTheMailUpToItsData) {
    Attach("file.bin", std::string(4 << 20, 'x'));
    const std::string writing = "0 " + std::string(texts::kFileContentFailed) + Bytes(m_files[0].Path);
    const struct {
        std::string script, result;
    } rows[] = {
        {"220|250|250|550 who?\r\n|221", "0 550 who?\r\n"},          {"220|250|250|250|<close>", "0 "},
        {kReady + std::string("552 too big\r\n|221"), "1 as given"}, {kReady + std::string("<reset>"), "1 as given"},
        {kReady + std::string("<cut>421 going down\r\n"), writing},
    };
    for (const auto& row : rows) {
        m_doc.SetFiles(row.script.find("<cut>") == std::string::npos ? std::vector<CMailDoc::FileInfo>() : m_files);
        ScriptedPeer peer(row.script);
        EXPECT_EQ(Run(peer.port, kAsWritten), row.result) << row.script;
    }
}

// Every shape of a reply at every step of the session, and what is true of the mail then.
TEST_F(Send, WholeTellsWhatBecameOfTheMailAtEachStep) {
    const std::string good[] = {"220 hi\r\n", "250 pc\r\n", "250 s\r\n",  "250 to\r\n",
                                "354 go\r\n", "250 ok\r\n", "221 bye\r\n"};
    enum { kRcpt = 3, kData, kEnd, kQuit, kReplies };
    const auto spread = [](const std::string& text) { return std::regex_replace(text, std::regex("[^]"), "$&~"); };
    const auto lines = [](const std::string& reply, std::size_t bytes) {
        std::string text;
        while (text.size() + 1000 < bytes)
            text += reply.substr(0, 3) + "-" + std::string(994, 'x') + "\r\n";
        return text + reply.substr(0, 4) + std::string(bytes - text.size() - 6, 'y') + "\r\n";
    };
    const std::string closed = texts::kServerClosed, malformed = texts::kReplyMalformed, tooLong = texts::kReplyTooLong,
                      outOfStep = texts::kReplyOutOfStep;
    const struct {
        const char* what;
        std::function<std::string(const std::string&)> reply;
        std::string problem;  // empty: none
        int code = 0, number = 0;
    } shapes[] = {
        {"whole", [](const auto& reply) { return reply; }, ""},
        {"split at each byte", spread, ""},
        {"several lines",
         [](const auto& reply) { return reply.substr(0, 3) + "-a\r\n" + reply.substr(0, 3) + "-\r\n" + reply; }, ""},
        {"delayed", [](const auto& reply) { return "~~~~~" + reply; }, ""},
        {"no text", [](const auto& reply) { return reply.substr(0, 3) + "\r\n"; }, ""},
        {"any bytes", [](const auto& reply) { return reply.substr(0, 4) + "\r\t\x01\xFF\x83\r\r\n"; }, ""},
        {"bare LF", [](const auto& reply) { return reply.substr(0, 3) + "-a\n" + reply.substr(0, 3) + "\n"; }, ""},
        {"64 KiB", [&](const auto& reply) { return lines(reply, 65536); }, ""},
        {"64 KiB and one", [&](const auto& reply) { return lines(reply, 65537); }, tooLong},
        {"64 KiB without an end", [](const auto& reply) { return reply.substr(0, 4) + std::string(65536, 'x'); },
         tooLong},
        {"cut off", [](const auto& reply) { return "<close>" + reply.substr(0, reply.size() - 1); }, closed},
        {"nothing", [](const auto&) { return "<close>"; }, closed},
        {"broken off", [](const auto&) { return "<reset>"; }, SocketText("Recv", ECONNRESET), 0, ECONNRESET},
        {"two bytes", [](const auto& reply) { return reply.substr(0, 2) + "\r\n"; }, malformed},
        {"an empty line before", [](const auto& reply) { return "\r\n" + reply; }, malformed},
        {"a stray byte before", [](const auto& reply) { return "\xFF" + reply; }, malformed},
        {"four digits", [](const auto& reply) { return reply.substr(0, 3) + reply; }, malformed},
        {"two codes", [](const auto& reply) { return "251-a\r\n" + reply; }, malformed},
        {"below 200", [](const auto&) { return "199 x\r\n"; }, malformed},
        {"above 599", [](const auto&) { return "600 x\r\n"; }, malformed},
        {"wrong kind", [](const auto& reply) { return reply[0] == '2' ? "354 x\r\n" : "250 x\r\n"; },
         outOfStep + "\r\n"},
        {"refused", [](const auto&) { return "502-no,\r\n502 never\r\n"; }, "502-no,\r\n502 never\r\n", 502},
        {"not now", [](const auto&) { return "~421 later\n"; }, "421 later\r\n", 421},
    };
    for (const auto& shape : shapes)
        for (int step = 0; step < kReplies; ++step) {
            std::string script;
            for (int turn = 0; turn < kReplies; ++turn)
                script += turn == step ? shape.reply(good[turn]) + "|" : good[turn] + "|";
            ScriptedPeer peer(script);
            const bool wrong = shape.problem == outOfStep + "\r\n", refused = shape.code != 0;
            const std::string problem = shape.problem + (wrong ? shape.reply(good[step]) : "");
            const bool taken = problem.empty() || step == kQuit, unknown = !taken && step == kEnd && !refused;
            const std::string missing = texts::kVerdictMissing + std::string("\r\n");
            EXPECT_EQ(Run(peer.port, kWhole), taken     ? "1 "
                                              : unknown ? "2 " + missing + problem
                                                        : "0 " + problem)
                << shape.what << " at " << step;
            EXPECT_EQ(m_result.replyCode, taken ? 0 : shape.code) << shape.what << " at " << step;
            EXPECT_EQ(m_result.systemError, taken ? 0 : shape.number) << shape.what << " at " << step;
            const std::string received = peer.Received();
            EXPECT_EQ(received.find(kDot) != std::string::npos, taken || step >= kEnd) << shape.what << " at " << step;
            EXPECT_EQ(received.ends_with("QUIT\r\n"), taken || refused) << shape.what << " at " << step;
            EXPECT_EQ(m_windows.DialogCount(), taken || step >= kEnd ? 0U : 1U);
        }

    // A reply that comes with the one before it, and nothing where it was due.
    for (int step = 0; step < kQuit; ++step) {
        std::string script;
        for (int turn = 0; turn < kReplies; ++turn)
            script += (turn == step ? good[turn] + good[turn + 1] : turn == step + 1 ? "" : good[turn]) + "|";
        ScriptedPeer peer(script);
        const bool believed = step != kRcpt && step != kData;
        EXPECT_EQ(Run(peer.port, kWhole), believed ? "1 " : "0 " + outOfStep) << step;
        EXPECT_EQ(peer.Received().find(kDot) != std::string::npos, believed) << step;
    }
}

TEST_F(Send, WholeBelievesNoVerdictThatIsNotTheMails) {
    const std::string unknown = "2 " + std::string(texts::kVerdictMissing) + "\r\n";
    const std::string outOfStep = texts::kReplyOutOfStep, big(4 << 20, 'x');
    Attach("file.bin", big);
    const struct {
        std::string script, result;
    } rows[] = {
        {"220\r\n|250\r\n|250\r\n|250 ok\r\n354 go\r\n|250\r\n|554 no\r\n", "0 " + outOfStep},
        {kReady + std::string("250\r\n554 no\r\n"), unknown + outOfStep + "\r\n554 no\r\n"},
        {kReady + std::string("<cut>552 full\r\n"), "0 552 full\r\n"},
        {kReady + std::string("<cut>"), "0 "},
    };
    for (const auto& row : rows) {
        m_doc.SetFiles(row.script.find("<cut>") == std::string::npos ? std::vector<CMailDoc::FileInfo>() : m_files);
        ScriptedPeer peer(row.script);
        EXPECT_TRUE(Run(peer.port, kWhole).starts_with(row.result)) << row.script << "\n" << Bytes(m_result.text);
    }
}

TEST_F(Send, LetsNobodyGetHalfAMailUnlessAsked) {
    Attach("file.bin", std::string(4 << 20, 'x'));
    for (const bool whole : {true, false}) {
        ScriptedPeer peer(kReady + std::string("250\r\n|221\r\n"));
        m_windows.whenNoted = [&, posted = false](const std::string& line) mutable {
            if (!posted && line.ends_with(".1086 100")) posted = true, m_windows.PostCommand(IDCANCEL);
        };
        EXPECT_EQ(Run(peer.port, whole ? kWhole : kAsWritten),
                  whole ? "0 " : "0 " + std::string(texts::kFileContentFailed) + Bytes(m_files[0].Path));
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
    const char* const turns[] = {"", "220\r\n|", "250\r\n|", "250\r\n|", "250\r\n|", "354\r\n|", "", "250\r\n|", ""};
    Attach("file.bin", std::string(8 << 20, 'x'));
    std::string script;
    for (int step = CSendWait::kGreeting; step <= CSendWait::kQuit; ++step) {
        const bool data = step == CSendWait::kDataBlock;
        m_doc.SetFiles(data ? m_files : std::vector<CMailDoc::FileInfo>());
        // Drips, so that no wait is long but the step is.
        const std::string drip = "2~5~0~-~a~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";
        ScriptedPeer tardy(script + (data ? "<stall>" : drip)), silent(script + (data ? "<stall>" : "<silent>"));
        CSendWait::Limits limits = kSendLimits;
        limits[static_cast<std::size_t>(step)] = 20;
        const std::string late = SocketText(data ? "Send" : "Recv", ETIMEDOUT);
        const std::string missing = texts::kVerdictMissing;
        const auto told = [&](const std::string& cause) {
            if (step == CSendWait::kQuit) return std::string("1 ");
            if (step != CSendWait::kDataEnd) return "0 " + cause;
            return "2 " + missing + (cause.empty() ? "" : "\r\n") + cause;
        };
        EXPECT_EQ(Run(tardy.port, &limits), told(late)) << step;

        m_windows.whenIdle = [&] {
            if (silent.isSilent.exchange(false)) m_windows.PostCommand(IDCANCEL);
        };
        EXPECT_EQ(Run(silent.port, kWhole), told("")) << step;
        m_windows.whenIdle = nullptr;
        EXPECT_TRUE(m_progress.UserCanceled()) << step;
        EXPECT_EQ(silent.Received().find(kDot) != std::string::npos, step >= CSendWait::kDataEnd) << step;
        script += turns[step];
    }
}

TEST_F(Send, KeepsMessagesMovingWhileItWaits) {
    ScriptedPeer peer("<silent>|220|250|250|250|354|250|221");
    m_windows.Post([&] { m_windows.Post([&] { peer.Speak(); }); });
    EXPECT_EQ(Run(peer.port, kAsWritten), "1 as given");
}

}  // namespace
