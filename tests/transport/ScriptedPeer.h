// A server on loopback that plays one session by a script, on a thread of its own and at a port of the system's choice.
// The script's turns stand between '|'. The first is what the server says when a client connects, each later one what
// it says when a command has come, as one piece. A turn for DATA that begins with 2 or 3 is followed by mail data: the
// turn behind it comes with the final dot. Turns with a meaning of their own:
//   <close>words  say the words, if any, and end the connection in both directions
//   <reset>words  the same, but break it off (RST)
//   <silent>      say nothing until Speak(), then go on at once with the next turn
//   <cut>words    in place of a verdict: say the words at the first piece of mail data and break the connection off
//   <stall>       in place of a verdict: read nothing until Speak()
// A ~ in a turn is a moment's pause. Behind the last turn it only listens. Whatever comes is recorded.
#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <semaphore>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

class ScriptedPeer {
public:
    explicit ScriptedPeer(std::string script, int family = AF_INET) {
        script += '|';
        for (std::size_t at = 0, end = 0; at < script.size(); at = end + 1)
            m_turns.push_back(script.substr(at, (end = script.find('|', at)) - at));
        sockaddr_in6 six{AF_INET6, 0, 0, in6addr_loopback, 0};
        sockaddr_in four{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        sockaddr* const address =
            family == AF_INET6 ? reinterpret_cast<sockaddr*>(&six) : reinterpret_cast<sockaddr*>(&four);
        socklen_t size = family == AF_INET6 ? sizeof six : sizeof four;
        m_listener = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_TRUE(bind(m_listener, address, size) == 0 && listen(m_listener, 1) == 0);
        EXPECT_EQ(getsockname(m_listener, address, &size), 0);
        port = ntohs(family == AF_INET6 ? six.sin6_port : four.sin_port);
        EXPECT_EQ(pipe(m_wake), 0);
        m_thread = std::thread([this] { Run(); });
    }
    ~ScriptedPeer() { (void)Received(); }

    int port = 0;
    bool cameEarly = false;  // a byte came behind a command before that was answered (RFC 5321 4.3.1)
    std::atomic<bool> isSilent = false;
    void Speak() { m_speak.release(); }
    // All that the client sent. Waits for the end of a session that was begun; one that was not is none.
    std::string Received() {
        if (!m_thread.joinable()) return m_received;
        EXPECT_EQ(write(m_wake[1], "", 1), 1);
        m_speak.release(16);  // nobody is kept waiting
        m_thread.join();
        for (int descriptor : {m_listener, m_wake[0], m_wake[1]})
            close(descriptor);
        return m_received;
    }

private:
    void Run() {
        pollfd entries[] = {{m_listener, POLLIN, 0}, {m_wake[0], POLLIN, 0}};
        while (poll(entries, 2, -1) < 0) {
        }
        if ((entries[0].revents & POLLIN) == 0) return;
        m_connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        const int on = 1;
        setsockopt(m_connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const timeval limit{30, 0};  // a client that hangs fails its test
        setsockopt(m_connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        Play();
        close(m_connection);
    }
    void Play() {
        bool data = false;
        for (std::size_t turn = 0; turn < m_turns.size(); ++turn) {
            const std::string& text = m_turns[turn];
            const std::size_t command = m_taken;
            const bool answers = turn > 0 && m_turns[turn - 1] != "<silent>" && text != "<stall>";
            if (answers && !TakeUntil(data ? "\r\n.\r\n" : "\r\n", text.starts_with("<cut>"))) return;
            data = !data && text.find_first_of("23") == 0 && m_received.substr(command) == "DATA\r\n";
            if (!PlayTurn(text)) return;
        }
        while (TakePiece()) {
        }
    }
    bool PlayTurn(const std::string& turn) {
        isSilent = turn == "<silent>" || turn == "<stall>";
        if (isSilent) m_speak.acquire();
        const bool resets = turn.starts_with("<cut>") || turn.starts_with("<reset>");
        Say(turn.substr(turn.starts_with('<') ? turn.find('>') + 1 : 0));
        const linger now{1, 0};
        if (resets) setsockopt(m_connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        return !resets && !turn.starts_with("<close>");
    }
    void Say(const std::string& words) {
        for (std::size_t at = 0, end = 0; at <= words.size(); at = end + 1) {
            end = std::min(words.find('~', at), words.size());
            if (at > 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            (void)send(m_connection, words.data() + at, end - at, MSG_NOSIGNAL);  // the client may have gone: it shows
        }
    }
    // Takes what comes until end has come, or with cut until anything has.
    bool TakeUntil(const char* end, bool cut) {
        std::size_t at = 0;
        while ((at = m_received.find(end, m_taken)) == std::string::npos) {
            if (!TakePiece()) return false;
            if (cut) return true;
        }
        m_taken = at + std::string(end).size();
        cameEarly = cameEarly || m_taken < m_received.size();
        return true;
    }
    bool TakePiece() {
        char piece[65536];
        ssize_t count = 0;
        do {
            count = recv(m_connection, piece, sizeof piece, 0);
        } while (count < 0 && errno == EINTR);  // a test's signal may come to this thread
        if (count > 0) m_received.append(piece, static_cast<std::size_t>(count));
        return count > 0;
    }

    std::vector<std::string> m_turns;
    int m_listener = -1;
    int m_wake[2] = {-1, -1};
    int m_connection = -1;
    std::string m_received;
    std::size_t m_taken = 0;  // bytes of it that a turn has answered
    std::counting_semaphore<> m_speak{0};
    std::thread m_thread;
};
