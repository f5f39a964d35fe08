#include <algorithm>
#include <hostkit/gateway/text/Transfer.h>

#include <mailengine/encoding/Base64.h>

namespace hostkit::gateway {
namespace {

// Arithmetic and no table, so that the compiler takes many bytes at once.
bool AreBase64Letters(std::string_view text) {
    unsigned others = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const auto letter = static_cast<unsigned char>((byte | 0x20) - 'a');
        const auto digit = static_cast<unsigned char>(byte - '0');
        others |= static_cast<unsigned>(!((letter < 26) | (digit < 10) | (byte == '+') | (byte == '/')));
    }
    return others == 0;
}

// The engine's decoder is ten times as fast as one that looks at each byte.
std::string DecodeCleanBase64(std::string_view text) {
    const CString source(text);
    std::string bytes(text.size() + 1, '\0');
    unsigned int written = 0;
    if (!CBase64::Decode(source, reinterpret_cast<unsigned char*>(bytes.data()),
                         static_cast<unsigned int>(bytes.size()), written))
        return "";
    bytes.resize(written);
    return bytes;
}

}  // namespace

bool IsCleanBase64(std::string_view text, LineEnds ends) {
    text = text.substr(0, text.find_last_not_of("\r\n") + 1);
    for (bool last = text.empty(); !last;) {
        const std::size_t end = text.find('\n');
        last = end == std::string_view::npos;
        std::string_view line = text.substr(0, end);
        if (!last && line.ends_with('\r'))
            line.remove_suffix(1);
        else if (!last && ends == LineEnds::Crlf)
            return false;
        if (line.size() % 4 != 0) return false;
        for (int i = 0; last && i < 2 && line.ends_with('='); ++i)
            line.remove_suffix(1);
        if (!AreBase64Letters(line)) return false;
        text.remove_prefix(last ? text.size() : end + 1);
    }
    return true;
}

bool IsEncoding(GMimeContentEncoding encoding) {
    return encoding == GMIME_CONTENT_ENCODING_BASE64 || encoding == GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE ||
           encoding == GMIME_CONTENT_ENCODING_UUENCODE;
}

std::string DecodeTransfer(std::string_view text, GMimeContentEncoding encoding) {
    if (!IsEncoding(encoding)) return std::string(text);
    if (encoding == GMIME_CONTENT_ENCODING_BASE64 && !text.empty() && IsCleanBase64(text, LineEnds::Any))
        return DecodeCleanBase64(text);
    GMimeEncoding decoder;
    g_mime_encoding_init_decode(&decoder, encoding);
    std::string bytes(g_mime_encoding_outlen(&decoder, text.size()) + 16, '\0');
    bytes.resize(g_mime_encoding_flush(&decoder, text.data(), text.size(), bytes.data()));
    return bytes;
}

}  // namespace hostkit::gateway
