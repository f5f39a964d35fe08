#include <cerrno>
#include <tests/FixedSystem.h>

#include <mailengine/transport/Smtp.h>

#include "ScriptedPeer.h"
#include "TransportTesting.h"

namespace {

using std::string_literals::operator""s;

std::string Detail(CSmtp& smtp) {
    CString detail = "left over";
    smtp.GetErrorDetail(detail);
    return Bytes(detail);
}

// One session as a mail stream drives it. Each step that succeeds adds its letter to the result: Open, Start, Data,
// End; Close always follows. Then comes the detail before Close, which must be the one behind it.
std::string RunSession(int port, const CStringArray& recipients) {
    CSmtp smtp;
    EXPECT_FALSE(smtp.Start("a@b", {}) || smtp.SendData("x") || smtp.End() || !smtp.Close()) << "not open yet";
    std::string steps;
    if (smtp.Open("127.0.0.1", port)) steps = "O";
    EXPECT_EQ(smtp.IsOpen(), steps == "O");
    if (steps == "O" && smtp.Start("a@b", recipients)) steps += "S";
    if (steps == "OS" && smtp.SendData("") && smtp.SendData(".\rtext")) steps += "D";
    if (steps == "OSD" && smtp.End()) steps += "E";
    const std::string detail = Detail(smtp);
    if (smtp.Close()) steps += "C";
    EXPECT_EQ(Detail(smtp), detail);
    EXPECT_FALSE(smtp.IsOpen());
    return steps + " " + detail;
}

TEST(Smtp, HoldsTheDialogue) {
    const std::string all =
        "HELO pc.example.test\r\nMAIL FROM:<a@b>\r\nRCPT TO:<c@d>\r\nRCPT TO:<>\r\nDATA\r\n.\rtext\r\n.\r\nQUIT\r\n";
    const struct {
        std::string script, result;
        const char* upTo = "QUIT\r\n";  // what was sent, to the end of this
    } rows[] = {
        {"220 hi\r\n|250 pc\r\n|250 ok\r\n|250 ok\r\n|251 ok\r\n|354 go\r\n|250 ok\r\n|221 bye\r\n", "OSDEC "},
        {"200|299|300|3xx|2  |250 go|200|200", "OSDEC "},
        {"220-a\r\n220 b\r\n250 c\r\n|250-a\r\n250 b\r\n|250|250|250|354|250|221", "OSDEC "},
        {"421 full\r\n", "C 421 full\r\n", ""},
        {"220|501 a\r\n", "C 501 a\r\n", "HELO pc.example.test\r\n"},
        {"220|250|550 a\0b\r\n|221"s, "OC 550 a", "<a@b>\r\n"},
        {"220|250|250|550 who\r\n|221", "OC 550 who\r\n", "<c@d>\r\n"},
        {"220|250|250|250|\x83\x5C\r\n|221", "OC \x83\x5C\r\n", "<>\r\n"},
        {"220|250|250|250|250|454 no\r\n|500", "O 454 no\r\n", "DATA\r\n"},
        {"220|250|250|250|250|354|552 big\r\n|221", "OSDC 552 big\r\n"},
        {"220|250|250|250|250|354|250|500", "OSDE "},
    };
    const CFixedSystem system;
    for (const auto& row : rows) {
        ScriptedPeer peer(row.script);
        EXPECT_EQ(RunSession(peer.port, Array({"c@d", ""})), row.result) << row.script;
        const std::string sent = all.substr(0, all.find(row.upTo) + std::string(row.upTo).size());
        const bool quits = row.result[0] == 'O' && sent != all;
        EXPECT_EQ(peer.Received(), quits ? sent + "QUIT\r\n" : sent) << row.script;
        EXPECT_FALSE(peer.cameEarly) << row.script;
    }
}

// A connection that ends shows as a reply of no bytes, one that is broken off as an error of the socket.
TEST(Smtp, SeesTheEndOfTheConnectionAtEachStep) {
    const std::string turns[] = {"220 hi|", "250 pc|", "250 ok|", "250 ok|", "354 go|", "250 ok|"};
    const std::string steps[] = {"C ", "C ", "O ", "O ", "O ", "OSD ", "OSDE "};
    const CFixedSystem system;
    std::string script;
    for (int turn = 0; turn <= 6; ++turn) {
        ScriptedPeer closing(script + "<close>");
        EXPECT_EQ(RunSession(closing.port, Array({"c@d"})), steps[turn]) << turn;
        if (turn == 6) break;
        script += turns[turn];
        ScriptedPeer resetting(script + "<reset>");
        const std::string detail = turn == 5 ? "" : SocketText("Recv", ECONNRESET);
        EXPECT_EQ(RunSession(resetting.port, Array({"c@d"})), steps[turn + 1] + detail) << turn;
    }
}

TEST(Smtp, TakesOneReadForOneReplyWhereverTheNetworkCutsIt) {
    const CFixedSystem system;
    const std::string greeting = "220 2 mx.3 4a\r\n";
    for (std::size_t cut = 1; cut < greeting.size(); ++cut) {
        const std::string rest = greeting.substr(cut);
        ScriptedPeer peer(greeting.substr(0, cut) + "|" + rest + "|221");
        const bool heard = cut >= 3;
        const bool passes = heard && rest.size() >= 3 && (rest[0] == '2' || rest[0] == '3');
        {
            CSmtp smtp;
            EXPECT_EQ(smtp.Open("127.0.0.1", peer.port), passes) << cut;
            EXPECT_EQ(Detail(smtp), heard && !passes && rest.size() >= 3 ? rest : "") << cut;
        }
        const std::string sent = passes ? "HELO pc.example.test\r\nQUIT\r\n" : "HELO pc.example.test\r\n";
        EXPECT_EQ(peer.Received(), heard ? sent : "") << cut;
    }
}

TEST(Smtp, ReadsAtMost512BytesOfAReply) {
    const CFixedSystem system;
    const std::string reply = "2" + std::string(511, '5');
    for (const std::string rest : {"", "5", "555 x"}) {  // what is left over answers HELO, if it has three bytes
        ScriptedPeer peer(reply + rest + (rest.empty() ? "|250|500|221" : ""));
        EXPECT_EQ(RunSession(peer.port, {}), rest.empty() ? "OC 500" : rest.size() < 3 ? "C " : "C " + rest);
    }
}

TEST(Smtp, SendsNothingOfAnEnvelopeItMayNotSend) {
    const struct {
        const char* what;
        std::string sender;
        CStringArray recipients;
        const char* detail;  // null: the envelope goes out
    } rows[] = {
        {"longest sender", std::string(497, 's'), Array({"c@d"}), nullptr},
        {"sender too long", std::string(498, 's'), Array({"c@d"}), texts::kCommandTooLong},
        {"longest recipient", "a@b", Array({std::string(499, 'r')}), nullptr},
        {"second recipient too long", "a@b", Array({"c@d", std::string(500, 'r')}), texts::kCommandTooLong},
        {"command in the sender", "a@b>\r\nRCPT TO:<x@y", Array({"c@d"}), texts::kAddressUnusable},
        {"bare CR", "a@b", Array({"c@d\r"}), texts::kAddressUnusable},
        {"bare LF", "a@b", Array({"c@d", "\nx"}), texts::kAddressUnusable},
        {"NUL", "a@b", Array({"c@d\0x"s}), texts::kAddressUnusable},
        {"per cent signs", "%s%d@b", Array({"%n@d"}), nullptr},
    };
    const CFixedSystem system;
    for (const auto& row : rows) {
        ScriptedPeer peer("220|250|250|250|354|250|221");
        {
            CSmtp smtp;
            ASSERT_TRUE(smtp.Open("127.0.0.1", peer.port));
            EXPECT_EQ(smtp.Start(row.sender.c_str(), row.recipients), row.detail == nullptr) << row.what;
            EXPECT_EQ(Detail(smtp), row.detail == nullptr ? "" : row.detail) << row.what;
            EXPECT_EQ(row.detail == nullptr && smtp.End(), row.detail == nullptr);
        }
        const std::string all =
            "MAIL FROM:<" + row.sender + ">\r\nRCPT TO:<" + Bytes(row.recipients.GetAt(0)) + ">\r\nDATA\r\n\r\n.\r\n";
        EXPECT_EQ(peer.Received(), "HELO pc.example.test\r\n" + (row.detail ? "" : all) + "QUIT\r\n") << row.what;
    }
}

TEST(Smtp, GivesAMachineNameOnlyIfItIsFitToSend) {
    CFixedSystem system;
    for (const char* name : {"pc\r\nMAIL FROM:<x@y>", static_cast<const char*>(nullptr)}) {
        system.hostName = name;
        ScriptedPeer peer("220|250");
        EXPECT_EQ(RunSession(peer.port, {}), "C "s + (name ? texts::kAddressUnusable : texts::kHostNameFailed));
        EXPECT_EQ(peer.Received(), "");
    }
}

TEST(Smtp, TakesNoMoreThanAHundredRecipientsAndLeavesNoneToTheServer) {
    const CFixedSystem system;
    CStringArray recipients;
    for (int i = 0; i <= CSmtp::kMaxRecipients; ++i)
        recipients.SetAtGrow(i, "c@d");
    ScriptedPeer spared("220|250|221"), bare("220|250|250|503 whom?|221");
    EXPECT_EQ(RunSession(spared.port, recipients), "OC ");
    EXPECT_EQ(spared.Received(), "HELO pc.example.test\r\nQUIT\r\n");
    EXPECT_EQ(RunSession(bare.port, {}), "OC 503 whom?");
}

}  // namespace
