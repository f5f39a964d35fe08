#include <hostkit/gateway/text/Transfer.h>

namespace hostkit::gateway {

std::string DecodeTransfer(std::string_view text, GMimeContentEncoding encoding) {
    if (encoding != GMIME_CONTENT_ENCODING_BASE64 && encoding != GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE &&
        encoding != GMIME_CONTENT_ENCODING_UUENCODE)
        return std::string(text);
    GMimeEncoding decoder;
    g_mime_encoding_init_decode(&decoder, encoding);
    std::string bytes(g_mime_encoding_outlen(&decoder, text.size()) + 16, '\0');
    bytes.resize(g_mime_encoding_flush(&decoder, text.data(), text.size(), bytes.data()));
    return bytes;
}

}  // namespace hostkit::gateway
