// CTransferDecoder: decodes a text of a transfer encoding (RFC 2045 6, of encoded words RFC 2047 4, of extended
// parameters RFC 2231 4), whole or in pieces of any length. One text, one object, one thread.
#pragma once

#include <cstddef>
#include <string_view>
#include <variant>

#include <mailengine/encoding/Base64Stream.h>
#include <mailengine/encoding/HexEscapes.h>
#include <mailengine/support/platform/text/String.h>

namespace parser {

class CTransferDecoder {
public:
    // "B" or "base64", "Q" or "quoted-printable", "H" (percent-hex), in any case of their letters; any other copies.
    explicit CTransferDecoder(std::string_view encoding);

    bool Copies() const { return std::holds_alternative<Copy>(m_codec); }
    // Whether a whole text of so many characters is refused.
    bool Refuses(std::size_t characters) const;
    // The most bytes that a text or piece of so many characters can give, with what Finish gives.
    std::size_t MaxBytes(std::size_t characters) const;

    // The bytes of the next piece: in buffer, which has room for MaxBytes of it, or, where nothing is to be decoded,
    // the piece itself. What the piece leaves open waits for the next one.
    std::string_view Decode(std::string_view piece, unsigned char* buffer);
    // Ends the text. The bytes of what was left open, in buffer, which has room for MaxBytes(0).
    std::string_view Finish(unsigned char* buffer);

    // Decodes a whole text into a buffer of any size, without a NUL behind it. 0: buffer is null, size is below the
    // length of text, or Base64 has fewer than 3 bytes left for its next character; written is then 0. Independent
    // of pieces.
    int DecodeWhole(const CString& text, unsigned char* buffer, unsigned int size, unsigned int& written) const;

private:
    struct Copy {};
    std::variant<Copy, CBase64Stream, hexescapes::Decoder<hexescapes::QuotedPrintable>,
                 hexescapes::Decoder<hexescapes::PercentHex>>
        m_codec;
};

// Decodes a whole text to bytes, which replace out. 0: it is refused, and out is empty.
int DecodeBytes(std::string_view text, std::string_view encoding, CString& out);
// DecodeBytes, then the conversion to code page 932 if charset is ISO-2022-JP.
int DecodeData(std::string_view text, std::string_view encoding, std::string_view charset, CString& out);
// DecodeData, up to the first NUL: a text.
int DecodeText(std::string_view text, std::string_view encoding, std::string_view charset, CString& out);

// Whether it is the one charset that is converted; text in any other stays as the bytes it is.
bool IsJapaneseCharset(std::string_view charset);

}  // namespace parser
