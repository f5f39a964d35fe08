// The engine's own way to send a document: the server gets the whole mail or nothing, its verdict is the result, and a
// wait ends when the user cancels or at its limit. Tests come in here with limits of their own.
#pragma once

#include <array>

#include <mailengine/support/platform/text/String.h>
#include <mailengine/transport/Smtp.h>

class CMailDoc;
class CProgressCallback;

// How long each step of a session may wait for the server, in milliseconds, by CSmtp::Step.
using SendLimits = std::array<int, CSmtp::kSteps>;

inline constexpr int kMinute = 60 * 1000;

// RFC 5321 4.5.3.2, which asks for at least as much, and is silent on three of the steps.
inline constexpr SendLimits kSendLimits = {
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

// See CMailSendRecv::SendWhole.
int SendWhole(const CMailDoc& doc, CProgressCallback& progress, CString& error, const SendLimits& limits);
