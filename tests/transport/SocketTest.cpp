#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/time.h>

#include <mailengine/transport/SocketClient.h>

#include "ScriptedPeer.h"
#include "TransportTesting.h"

namespace {

TEST(Socket, ReachesNamesAndBothKindsOfAddress) {
    for (const std::string host : {"127.0.0.1", "localhost", "::1"}) {
        ScriptedPeer peer("hello", host == "::1" ? AF_INET6 : AF_INET);
        CSocketClient client;
        ASSERT_TRUE(client.Connect(host.c_str(), peer.port + 0x30000)) << host;  // the low 16 bits count
        char buffer[16] = {};
        EXPECT_EQ(client.Receive(buffer, 3), 3);
        EXPECT_EQ(client.Receive(buffer + 3, 13), 2);
        EXPECT_STREQ(buffer, "hello");
        EXPECT_EQ(client.Send("world", 5), 5);
        EXPECT_TRUE(client.Close());
        EXPECT_EQ(peer.Received(), "world");
    }
}

TEST(Socket, SaysWhyItDidNotConnect) {
    const int deserted = ScriptedPeer("").port;
    CSocketClient client;
    EXPECT_FALSE(client.Connect("127.0.0.1", deserted));
    EXPECT_EQ(Bytes(client.GetError()), SocketText("Connect", ECONNREFUSED));
    for (const char* nobody : {"", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(client.Connect(nobody, 25));
        EXPECT_EQ(Bytes(client.GetError()), SocketText("Connect", -2)) << "the resolver's EAI_NONAME";
    }
    EXPECT_FALSE(client.Connect(std::string(300, 'x').c_str(), 25));
    EXPECT_NE(Bytes(client.GetError()).find(": -"), std::string::npos) << client.GetError();

    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_FALSE(client.Connect("127.0.0.1", 25));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(Bytes(client.GetError()), SocketText("Connect", EMFILE));
    EXPECT_TRUE(client.Close()) << "nothing was open";
}

TEST(Socket, TellsNoDataAndTheEndFromFailure) {
    ScriptedPeer closing("<close>"), resetting("<silent>|<reset>");
    char byte = 0;
    CSocketClient client, broken;
    ASSERT_TRUE(client.Connect("127.0.0.1", closing.port) && broken.Connect("127.0.0.1", resetting.port));
    EXPECT_EQ(client.Send(nullptr, 5) + client.Send("x", 0) + client.Receive(nullptr, 5) + client.Receive(&byte, 0), 0);
    EXPECT_EQ(client.Receive(&byte, 1), 0) << "the peer closed";
    EXPECT_EQ(Bytes(client.GetError()), "");
    resetting.Speak();
    EXPECT_EQ(broken.Receive(&byte, 1), -1);
    EXPECT_EQ(Bytes(broken.GetError()), SocketText("Recv", ECONNRESET));
    EXPECT_EQ(broken.Send("x", 1), -1) << "and no signal ends the program";
    EXPECT_EQ(Bytes(broken.GetError()), SocketText("Send", EPIPE));
    EXPECT_FALSE(broken.Close());
    EXPECT_EQ(Bytes(broken.GetError()), SocketText("Close", ENOTCONN));
}

TEST(Socket, SendsAllWhileThePeerIsSlowAndSignalsCome) {
    struct sigaction handler {};
    handler.sa_handler = [](int) {};
    sigaction(SIGALRM, &handler, nullptr);
    const itimerval ticks{{0, 500}, {0, 500}}, none{};
    setitimer(ITIMER_REAL, &ticks, nullptr);
    const std::string text(16 << 20, 'x');
    ScriptedPeer peer("");
    {
        CSocketClient client;
        ASSERT_TRUE(client.Connect("127.0.0.1", peer.port));
        EXPECT_EQ(client.Send(text.data(), static_cast<int>(text.size()), 1), static_cast<int>(text.size()));
    }  // closes
    EXPECT_EQ(peer.Received().size(), text.size());
    setitimer(ITIMER_REAL, &none, nullptr);
}

// Ends the waits at a limit in milliseconds, or at a question.
struct ShortWait : CSocketWait {
    ShortWait(int milliseconds, int questions) : limit(milliseconds), left(questions) {}
    int TimeLimit() override { return limit; }
    int GoOn() override { return --left != 0; }
    int limit, left;
};

TEST(Socket, EndsAnyWaitAtItsLimitOrWhenToldToForGood) {
    for (const auto& [wait, number] : {std::pair(ShortWait(20, -1), ETIMEDOUT), {ShortWait(-1, 3), ECANCELED}}) {
        ScriptedPeer silent("");
        ShortWait shortWait = wait, lateWait = wait;
        CSocketClient client, late;
        ASSERT_TRUE(client.Connect("127.0.0.1", silent.port));
        client.SetWait(&shortWait);
        char byte = 0;
        EXPECT_EQ(client.Receive(&byte, 1), -1);
        client.SetWait(nullptr);
        EXPECT_EQ(client.Receive(&byte, 1), -1) << "there is no way back";
        EXPECT_EQ(Bytes(client.GetError()), SocketText("Recv", number));

        // A listener whose queue is full answers no connection.
        const int listener = socket(AF_INET, SOCK_STREAM, 0), guest = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        ASSERT_TRUE(listen(listener, 0) == 0 && getsockname(listener, any, &size) == 0 &&
                    connect(guest, any, size) == 0);
        late.SetWait(&lateWait);
        EXPECT_FALSE(late.Connect("127.0.0.1", ntohs(address.sin_port)));
        EXPECT_EQ(Bytes(late.GetError()), SocketText("Connect", number));
        close(guest);
        close(listener);
    }
}

}  // namespace
