// Gateway: any message in, a message in the dialect of the engine out, which CEMailPerser then reads rightly. What the
// dialect is, what is rewritten and how, and what is lost: docs/gateway.md. It opens no file of the message's choice,
// and no message makes it fail: what can be read is given, and what could not is told. Any thread; no state is kept.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <hostkit/characters/Export.h>
#include <hostkit/gateway/CharacterTable.h>
#include <hostkit/gateway/Mailbox.h>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit {

// What a message may hold. Beyond it the rest is told as a notice, but for the size, which is refused.
struct GatewayLimits {
    std::size_t bytes = INT_MAX;  // also of the message that comes out
    std::size_t depth = 100;      // of multiparts
    std::size_t parts = 10000;
};

struct Notice {
    enum class Kind {
        Cut,               // a closing delimiter is missing, the message may be cut off
        TooDeep,           // multiparts nest deeper than the limit; what lies there is an attachment as it came
        TooMany,           // parts beyond the limit are left out; detail: their number
        TooManyAddresses,  // addresses of a field beyond 10,000 are left out; detail: its name
        UnknownEncoding,   // a part stays encoded; detail: what its transfer encoding is called
        UnknownBytes,      // bytes of the text are no characters of its charset; detail: in how many places
        Encrypted,         // the letter cannot be read without its key
        Replaced,          // 〓 stands for characters that found no place; detail: how many
    };
    Kind kind;
    std::string detail;

    // A sentence without its full stop, for people and logs.
    HOSTKIT_API std::string Sentence() const;
};

// An attachment of the message that came out, in the order in which the engine lists them.
struct PassedFile {
    std::string name;      // by the rule of file names, unique in its message
    std::string original;  // as the message had it; empty where it had none
    std::string type;      // the media type, "application/pdf"
    std::uint64_t size;    // bytes
};

struct Passed {
    // In the dialect, with CRLF. Empty if the message was refused.
    std::string message;
    std::string refusal;  // why; empty if it was not

    // Whether the message had to be rewritten. If not, it is the one that came, but for its line ends and what an mbox
    // put on top; the engine's values then are code page 932, and what follows is empty, but for replyTo.
    bool changed = false;
    bool mayHoldFiles = true;      // false: the engine makes no file of it, and needs no folder
    CharacterTable characters;     // what the engine's values are to be read with
    std::vector<Mailbox> replyTo;  // Reply-To, which the engine does not read
    std::vector<PassedFile> files;
    std::vector<std::string> alternatives;  // the types of other forms of the text, which are not given
    std::vector<Notice> notices;
};

HOSTKIT_API Passed PassThrough(std::string message, const GatewayLimits& limits = {});

}  // namespace hostkit
