// CSendWait: ends a wait on the server when its step of the session has lasted too long, and when the user cancels.
#pragma once

#include <array>
#include <chrono>

#include <mailengine/support/platform/net/Socket.h>

class CProgressCallback;

class CSendWait : public CSocketWait {
public:
    // The steps of a session with a server, in their order.
    enum Step { kConnect, kGreeting, kHello, kSender, kRecipient, kDataStart, kDataBlock, kDataEnd, kQuit, kSteps };
    // How long each step may wait for the server, in milliseconds.
    using Limits = std::array<int, kSteps>;

    // Both are lent and outlive this object.
    CSendWait(CProgressCallback& progress, const Limits& limits) : m_progress(progress), m_limits(limits) {}

    // The step begins, and its time.
    void Begin(Step step);
    // What is left of the step's time, so that a reply which drips does not last for ever; but the whole of it for each
    // address that is tried, and behind each byte of data that went out.
    int TimeLimit() override;
    // 0 once the user has cancelled.
    int GoOn() override;

private:
    CProgressCallback& m_progress;
    const Limits& m_limits;
    Step m_nStep = kConnect;
    std::chrono::steady_clock::time_point m_begun;
};

inline constexpr int kMinute = 60 * 1000;

// RFC 5321 4.5.3.2, which asks for at least as much, and is silent on three of the steps.
inline constexpr CSendWait::Limits kSendLimits = {
    2 * kMinute,   // connection, for each of the server's addresses: about where the system gives up by itself
    5 * kMinute,   // greeting (4.5.3.2.1)
    5 * kMinute,   // HELO: as the greeting
    5 * kMinute,   // MAIL (4.5.3.2.2)
    5 * kMinute,   // RCPT (4.5.3.2.3)
    2 * kMinute,   // DATA (4.5.3.2.4)
    3 * kMinute,   // a block of data, since the last byte of it that went out (4.5.3.2.5)
    10 * kMinute,  // end of data: the server delivers the mail before it answers (4.5.3.2.6)
    kMinute / 2,   // QUIT: the mail is taken or refused by then, and the user waits
};
