// ShownMail: an opened mail for the user of the command. Stateless; one thread.
#pragma once

#include <hostkit/files/MessageSource.h>
#include <hostkit/letter/OpenedMail.h>

// The mail for people: the summary of its header, or the header block if that is asked for, body, attachments.
std::string ShownMail(const hostkit::OpenedMail& opened, bool headers);
// The mail as one JSON object on one line (RFC 8259), plain for a terminal too (docs/command-json.md).
std::string JsonOfMail(const hostkit::OpenedMail& opened, bool headers, const hostkit::MessageSource::Message& message);
