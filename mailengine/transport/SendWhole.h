// The engine's own ways to send: see CMailSendRecv::SendWhole and SendMessage. Tests come in here with limits of their
// own.
#pragma once

#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SendWait.h>

class CStringArray;

CMailSendRecv::Result SendWhole(const CMailDoc& doc, const CStringArray& blindRecipients, CProgressCallback& progress,
                                const CSendWait::Limits& limits);
CMailSendRecv::Result SendMessage(const CMailDoc& envelope, const CString& message, CProgressCallback& progress,
                                  const CSendWait::Limits& limits);
