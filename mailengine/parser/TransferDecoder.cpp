#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>
#include <mailengine/parser/TransferDecoder.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

using QuotedPrintable = hexescapes::Decoder<hexescapes::QuotedPrintable>;
using PercentHex = hexescapes::Decoder<hexescapes::PercentHex>;

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

std::string_view ViewOf(const unsigned char* bytes, std::size_t count) {
    return {reinterpret_cast<const char*>(bytes), count};
}

int CopyWhole(std::string_view text, unsigned char* buffer, unsigned int size, unsigned int& written) {
    written = 0;
    if (buffer == nullptr || size < text.size()) return 0;
    written = static_cast<unsigned int>(text.copy(reinterpret_cast<char*>(buffer), text.size()));
    return 1;
}

}  // namespace

CTransferDecoder::CTransferDecoder(std::string_view encoding) {
    const auto isNamed = [&](std::string_view name) { return platform::EqualIgnoringCase(encoding, name); };
    if (isNamed("B") || isNamed(wire::kBase64)) {
        m_codec.emplace<CBase64Stream>();
    } else if (isNamed("Q") || isNamed("quoted-printable")) {
        m_codec.emplace<QuotedPrintable>();
    } else if (isNamed("H")) {
        m_codec.emplace<PercentHex>();
    }
}

bool CTransferDecoder::Refuses(std::size_t characters) const {
    return std::holds_alternative<CBase64Stream>(m_codec) && CBase64Stream::Refuses(characters);
}

std::size_t CTransferDecoder::MaxBytes(std::size_t characters) const {
    const bool isBase64 = std::holds_alternative<CBase64Stream>(m_codec);
    return isBase64 ? CBase64Stream::MaxBytes(characters) + CBase64Stream::kLastBytes : characters;
}

std::string_view CTransferDecoder::Decode(std::string_view piece, unsigned char* buffer) {
    return std::visit(Overloaded{[&](Copy&) { return piece; },
                                 [&](auto& codec) { return ViewOf(buffer, codec.Decode(piece, buffer)); }},
                      m_codec);
}

std::string_view CTransferDecoder::Finish(unsigned char* buffer) {
    std::size_t last = 0;
    if (auto* const base64 = std::get_if<CBase64Stream>(&m_codec); base64 != nullptr)
        (void)base64->Finish(buffer, last);  // of a refused text nothing is left
    return ViewOf(buffer, last);
}

int CTransferDecoder::DecodeWhole(const CString& text, unsigned char* buffer, unsigned int size,
                                  unsigned int& written) const {
    return std::visit(
        Overloaded{[&](const Copy&) { return CopyWhole(text.View(), buffer, size, written); },
                   [&](const CBase64Stream&) { return CBase64::Decode(text, buffer, size, written); },
                   [&](const QuotedPrintable&) { return CQuotedPrint::Decode(text, buffer, size, written); },
                   [&](const PercentHex&) { return CLanguage::HexDecode(text, buffer, size, written); }},
        m_codec);
}

int DecodeBytes(std::string_view text, std::string_view encoding, CString& out) {
    CTransferDecoder decoder(encoding);
    out.Empty();
    if (decoder.Refuses(text.size())) return 0;
    if (decoder.Copies()) {
        out = CString(text);
        return 1;
    }
    const auto room = static_cast<int>(decoder.MaxBytes(text.size()));
    auto* const buffer = reinterpret_cast<unsigned char*>(out.GetBufferSetLength(room));
    const std::size_t made = decoder.Decode(text, buffer).size();
    out.ReleaseBuffer(static_cast<int>(made + decoder.Finish(buffer + made).size()));
    return 1;
}

int DecodeData(std::string_view text, std::string_view encoding, std::string_view charset, CString& out) {
    const bool converts = IsJapaneseCharset(charset) && !text.empty();
    if (!converts || !CTransferDecoder(encoding).Copies()) {
        if (!DecodeBytes(text, encoding, out)) return 0;
        text = out.View();
    }
    if (converts) CLanguage::JIS_SJIS(text.data(), static_cast<unsigned int>(text.size()), out);
    return 1;
}

int DecodeText(std::string_view text, std::string_view encoding, std::string_view charset, CString& out) {
    const int decoded = DecodeData(text, encoding, charset, out);
    out.ReleaseBuffer(-1);
    return decoded;
}

bool IsJapaneseCharset(std::string_view charset) {
    return platform::EqualIgnoringCase(charset, wire::kIso2022Jp);
}

}  // namespace parser
