// Glance: what a list shows of a message, from its header alone. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <hostkit/characters/Export.h>
#include <hostkit/gateway/Mailbox.h>
#include <optional>
#include <string>
#include <string_view>

namespace hostkit {

// Values are UTF-8, and can hold control characters.
struct Glance {
    Mailbox from;  // the first of its senders
    std::string subject;
    std::string date;                  // as it stands, folds undone
    std::optional<std::int64_t> time;  // of the date, in seconds since 1970 began in UTC; empty where it is none
    // By the type of the whole message: a multipart/mixed, or a single part that is no text or says that it is an
    // attachment. One that lies deeper, in a signed message for instance, is not seen.
    bool hasAttachments = false;
    bool isMessage = false;  // it begins with header fields (RFC 5322 2.1), and mail knows one of them
};

// message may end behind its header, which is all that is looked at.
HOSTKIT_API Glance GlanceAt(std::string_view message);

// The offset behind the header of a message, whose lines end in any way; the size of the text if its end is not there.
// Empty lines on top count for nothing.
HOSTKIT_API std::size_t EndOfHeader(std::string_view message);

}  // namespace hostkit
