// The engine's own way to send a document: see CMailSendRecv::SendWhole. Tests come in here with limits of their own.
#pragma once

#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SendWait.h>

class CStringArray;

CMailSendRecv::Result SendWhole(const CMailDoc& doc, const CStringArray& blindRecipients, CProgressCallback& progress,
                                const CSendWait::Limits& limits);
