#include <tests/FixedSystem.h>

#include <mailengine/transport/SmtpStream.h>

#include "ScriptedPeer.h"
#include "TransportTesting.h"

namespace {

constexpr char kEnvelope[] = "HELO pc.example.test\r\nMAIL FROM:<a@b>\r\nRCPT TO:<c@d>\r\nDATA\r\n";

std::string Text(int bytes) {
    return std::string(static_cast<std::size_t>(bytes), 'x');
}

TEST(SmtpStream, EndsAMailInTwoWays) {
    const CFixedSystem system;
    const std::string data = kEnvelope + Text(4096) + "y", dot = "\r\n.\r\n", quit = "QUIT\r\n";
    for (const std::string verdict : {"250 ok", "552 no"})
        for (const bool closes : {true, false}) {
            ScriptedPeer peer("220|250|250|250|354|" + verdict + "|221");
            {
                CSmtpStream stream("127.0.0.1", peer.port, "a@b", Array({"c@d"}));
                ASSERT_TRUE(stream.Open());
                EXPECT_TRUE(stream.WriteString(Text(4096).c_str()) && stream.WriteString("y"));
                if (closes) stream.Close();
                CString detail;
                stream.GetErrorDetail(detail);
                EXPECT_EQ(Bytes(detail), closes && verdict == "552 no" ? verdict : "");
                EXPECT_FALSE(closes && stream.WriteString("x"));
            }
            EXPECT_EQ(peer.Received(), data + dot + quit) << verdict;
        }
}

}  // namespace
