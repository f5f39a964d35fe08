// MailFault: the first thing in a message that keeps it from being read, for a host that wants to name or mend it.
// CEMailPerser::Perse fills one. A plain value; it holds no part of the message but a name cut to kMaxNameBytes.
#pragma once

#include <cstddef>
#include <vector>

#include <mailengine/support/platform/text/String.h>

struct MailFault {
    static constexpr std::size_t kMaxNameBytes = 128;

    // Behind each: what name holds, where it holds anything.
    enum class Kind {
        kNone,                // the message was read
        kTooLong,             // it has 2 GiB or more
        kEmpty,               // the message, or an attached mail, has no byte
        kNoMimeVersion,       // no MIME-Version field stands in its header block
        kOtherMimeVersion,    // it is not 1.0: its value
        kNestsTooDeep,        // related parts and attached mails nest deeper than is walked
        kNoBoundary,          // a multipart has no boundary parameter
        kNoDelimiter,         // no delimiter of a multipart is there: its boundary
        kNoClosingDelimiter,  // some are there, and the closing one is not: its boundary
        kPartWithoutName,     // a part of a multipart/mixed that can only be a file has no name: its media type
        kImageWithoutName,    // so has an image elsewhere: its media type
        kNoEmptyLine,         // no empty line stands between a file's fields and its data: the file's name
        kLastFileIsEmpty,     // the delimiter behind a file without data uses up its empty line: the file's name
        kDataWithoutEnd,      // no empty line stands behind an image that is no part of a multipart/mixed: its name
        kTextNotDecoded,      // the body's transfer encoding is broken
        kFileNotDecoded,      // so is that of a file: its name
        kFileNotMade,         // a new file could not be made in the folder: its name; error tells why
        kFileNotWritten,      // it was made, and its data could not be written whole: its name; error tells why
    };
    Kind kind = Kind::kNone;

    // The way to it from the outermost entity in: numbers of parts, from 1, and 0 for the step into the mail that is
    // attached there. {2, 0, 1} is the first part of the mail that is attached as the second part; empty is the
    // message itself.
    std::vector<int> path;
    // Where it lies, as a byte offset in the message: the top of what has no end or no other piece, or of the
    // entity's rest behind its Content-Type field.
    std::size_t offset = 0;
    // Whether a NUL stands behind offset in the entity. What was searched for may lie behind it, where no search goes.
    bool holdsNul = false;
    // Decoded as all values of the parser are: code page 932, or the bytes as they were. Cut to kMaxNameBytes, which
    // may cut a character.
    CString name;
    // The system's number (errno) of what failed; 0 where kind names none.
    int error = 0;
};
