// Where a mail goes (RFC 5321 2.3.1), as a document tells it.
#pragma once

#include <cstdint>

#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

class CMailDoc;

struct Envelope {
    CString server;
    std::int32_t port = 0;
    CString sender;
    CStringArray recipients;  // of To, Cc, Bcc and, with SenderBccFlg, the sender, in this order; not checked
};

// Takes the envelope out of doc. 0: server, port or sender is missing or unusable, and error says which.
int TakeEnvelope(const CMailDoc& doc, Envelope& envelope, CString& error);
