#include <tests/FixedSystem.h>

#include <mailengine/transport/SmtpStream.h>

#include "ScriptedPeer.h"
#include "TransportTesting.h"

namespace {

constexpr char kEnvelope[] = "HELO pc.example.test\r\nMAIL FROM:<a@b>\r\nRCPT TO:<c@d>\r\nDATA\r\n";

std::string Text(int bytes) {
    return std::string(static_cast<std::size_t>(bytes), 'x');
}

TEST(SmtpStream, EndsAMailInFourWays) {
    const CFixedSystem system;
    const std::string data = kEnvelope + Text(4096) + "y", dot = "\r\n.\r\n", quit = "QUIT\r\n";
    for (const std::string verdict : {"250 ok", "552 no"})
        for (const char* way : {"Close", "Finish", "Abort", "end of life"}) {
            ScriptedPeer peer("220|250|250|250|354|" + verdict + "|221");
            {
                CSmtpStream stream("127.0.0.1", peer.port, "a@b", Array({"c@d"}));
                ASSERT_TRUE(stream.Open());
                EXPECT_TRUE(stream.WriteString(Text(4096).c_str()) && stream.WriteString("y"));
                if (*way == 'C') stream.Close();
                EXPECT_EQ(*way == 'F' && stream.Finish(), *way == 'F' && verdict == "250 ok");
                if (*way == 'A') stream.Abort();
                CString detail;
                stream.GetErrorDetail(detail);
                EXPECT_EQ(Bytes(detail), (*way == 'C' || *way == 'F') && verdict == "552 no" ? verdict : "");
                EXPECT_FALSE(*way != 'e' && (stream.WriteString("x") || stream.Finish()));
            }
            EXPECT_EQ(peer.Received(), *way == 'A' ? kEnvelope + Text(4096) : data + dot + quit) << way;
        }
}

}  // namespace
