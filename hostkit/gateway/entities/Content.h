// Content: what an entity says of itself in its Content fields (RFC 2045, 2183, 2231, 2387, 3676), by GMime's parsers.
// Values are UTF-8. Any thread.
#pragma once

#include <gmime/gmime.h>
#include <hostkit/gateway/entities/Fields.h>
#include <string>
#include <string_view>

namespace hostkit::gateway {

struct Content {
    std::string type;     // "text/plain", in small letters
    std::string charset;  // as declared, or empty
    std::string boundary;
    std::string start;  // the root of a related, without its angle brackets
    std::string smimeType;
    std::string id;             // its Content-ID, without its angle brackets
    std::string name;           // of a file: filename, else name; empty if it has none
    bool isAttachment = false;  // by its disposition
    bool isFlowed = false;
    bool isDelSp = false;
    GMimeContentEncoding encoding = GMIME_CONTENT_ENCODING_DEFAULT;
    std::string unknownEncoding;  // what the field says, where that is no encoding

    bool Is(std::string_view wanted) const { return type == wanted; }
    bool IsMultipart() const { return type.starts_with("multipart/"); }
    bool IsText() const { return type.starts_with("text/"); }
};

// defaultType is what an entity without a Content-Type is where it stands.
Content ReadContent(const Header& header, std::string_view defaultType);

}  // namespace hostkit::gateway
