#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <map>

#include <mailengine/encoding/Base64.h>
#include <mailengine/encoding/Base64Stream.h>
#include <mailengine/encoding/HexEscapes.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/encoding/QuotedPrint.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/Values.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

constexpr std::string_view kContentType = "Content-Type:";
constexpr std::string_view kJapanesePrefix = "iso-2022-jp''";  // RFC 2231 4: charset, no language

struct NamedEncoding {
    std::string_view name;
    Encoding encoding;
};
constexpr std::array<NamedEncoding, 5> kEncodings = {{{"B", Encoding::kBase64},
                                                      {wire::kBase64, Encoding::kBase64},
                                                      {"Q", Encoding::kQuotedPrintable},
                                                      {"quoted-printable", Encoding::kQuotedPrintable},
                                                      {"H", Encoding::kHex}}};

unsigned char* BytesOf(char* buffer) {
    return reinterpret_cast<unsigned char*>(buffer);
}

// The value of a Content-Type field taken apart.
ContentType Split(std::string_view value) {
    ContentType result;
    const int semicolon = Find(value, ";", 0);
    if (semicolon == -1) {
        result.type = CString(value);
        if (!IsType(result.type, "text/plain")) result.parameters.Empty();
        return result;
    }
    result.type = CString(TrimRight(Mid(value, 0, semicolon)));
    result.parameters = CString(TrimLeft(Mid(value, semicolon + 1)));
    return result;
}

// Calls visit with each parameter, name and value up to its ";", until that gives true.
template <class Visit>
void VisitParameters(std::string_view parameters, Visit visit) {
    for (std::string_view rest = Trim(parameters);; rest = TrimLeft(rest)) {
        const int semicolon = Find(rest, ";", 0);
        if (visit(semicolon == -1 ? rest : Mid(rest, 0, semicolon)) || semicolon == -1) return;
        rest.remove_prefix(static_cast<std::size_t>(semicolon) + 1);
    }
}

CString ParameterValue(std::string_view value) {
    value = Trim(value);
    if (value.starts_with('"')) value.remove_prefix(1);
    if (value.ends_with('"')) value.remove_suffix(1);
    return DecodeFieldValue(value);
}

// Splits "7*=value", the rest of a numbered piece, into number and value. -1: it is no such thing.
int SplitPiece(std::string_view rest, std::string_view& value) {
    int number = -1;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    const auto digits = static_cast<std::size_t>(end - rest.data());
    const bool isPlain = error == std::errc() && number >= 0 && rest[0] != '-' && (digits == 1 || rest[0] != '0');
    if (!isPlain || !rest.substr(digits).starts_with("*=")) return -1;
    value = rest.substr(digits + 2);
    return number;
}

CString DecodeEncodedWord(std::string_view charset, std::string_view encoding, std::string_view text) {
    CString word;
    // What a refused word wrote before counts, but a refusal comes before the first byte.
    (void)DecodeText(text, EncodingOf(encoding), charset, word);
    return word;
}

using Decoder = int (*)(const CString& text, unsigned char* buffer, unsigned int size, unsigned int& written);

int CopyPlain(const CString& text, unsigned char* buffer, unsigned int size, unsigned int& written) {
    written = 0;
    const std::string_view bytes = text.View();
    if (buffer == nullptr || size < bytes.size()) return 0;
    bytes.copy(reinterpret_cast<char*>(buffer), bytes.size());
    written = static_cast<unsigned int>(bytes.size());
    return 1;
}

Decoder DecoderOf(Encoding encoding) {
    switch (encoding) {
        case Encoding::kBase64:
            return &CBase64::Decode;
        case Encoding::kQuotedPrintable:
            return &CQuotedPrint::Decode;
        case Encoding::kHex:
            return &CLanguage::HexDecode;
        case Encoding::kPlain:
            break;
    }
    return &CopyPlain;
}

std::size_t DecodeBase64(std::string_view text, unsigned char* buffer) {
    CBase64Stream stream;
    const std::size_t made = stream.Decode(text, buffer);
    std::size_t last = 0;
    (void)stream.Finish(buffer + made, last);  // refuses one character, which RefusesDecoding has turned away
    return made + last;
}

}  // namespace

bool IsType(const CString& type, std::string_view name) {
    return platform::EqualIgnoringCase(type.View(), name);
}

const ContentType& CEntity::GetContentType(int start, int& next) {
    const bool known = m_nFrom != -1 && start >= m_nFrom && start <= m_line.lastLooked;
    if (!known) {
        m_line = FindFieldLine(m_text, start, kContentType);
        m_nFrom = start;
        m_bRead = false;
    }
    if (!m_bRead) {
        CString value;
        m_nNext = m_line.top;
        const bool read =
            m_line.top != -1 && ParseFieldValue(m_text, m_line.top, kContentType.size() - 1, value, m_nNext);
        m_type = read ? Split(value.View()) : ContentType();
        m_bRead = true;
    }
    if (m_line.top != -1) next = m_nNext;
    return m_type;
}

CString GetParameter(std::string_view parameters, std::string_view name) {
    const std::string key = std::string(name) + "=";
    CString result;
    VisitParameters(parameters, [&](std::string_view parameter) {
        if (!StandsAtIgnoringCase(parameter, 0, key)) return false;
        result = ParameterValue(parameter.substr(key.size()));
        return true;
    });
    return result;
}

CString GetNumberedParameter(std::string_view parameters, std::string_view name) {
    const std::string key = std::string(name) + "*";
    std::map<int, std::string_view> pieces;  // the first of a number counts
    VisitParameters(parameters, [&](std::string_view parameter) {
        std::string_view value;
        const bool isOurs = StandsAtIgnoringCase(parameter, 0, key);
        const int number = isOurs ? SplitPiece(parameter.substr(key.size()), value) : -1;
        if (number >= 0) pieces.emplace(number, value);
        return false;
    });
    CString joined;
    int expected = 0;
    for (const auto& [number, value] : pieces) {
        const CString piece = number == expected++ ? ParameterValue(value) : CString();
        if (piece.IsEmpty()) break;
        joined += piece;
    }
    if (!StandsAtIgnoringCase(joined.View(), 0, kJapanesePrefix)) return joined;
    CString decoded;
    (void)DecodeText(joined.View().substr(kJapanesePrefix.size()), Encoding::kHex, wire::kIso2022Jp, decoded);
    return decoded;
}

CString DecodeFieldValue(std::string_view value) {
    int top = Find(value, "=?", 0);
    if (top == -1) return CString(value);
    CString result;
    int done = 0;
    for (; top != -1; top = Find(value, "=?", done)) {
        result += Mid(value, done, top - done);
        const int charset = top + 2;
        const int charsetEnd = Find(value, "?", charset);
        const int encodingEnd = charsetEnd == -1 ? -1 : Find(value, "?", charsetEnd + 1);
        const int textEnd = encodingEnd == -1 ? -1 : Find(value, "?=", encodingEnd + 1);
        if (textEnd == -1) {
            result += Mid(value, charset);
            return result;
        }
        result += DecodeEncodedWord(Mid(value, charset, charsetEnd - charset),
                                    Mid(value, charsetEnd + 1, encodingEnd - charsetEnd - 1),
                                    Mid(value, encodingEnd + 1, textEnd - encodingEnd - 1));
        done = textEnd + 2;
    }
    result += Mid(value, done);
    return result;
}

Encoding EncodingOf(std::string_view name) {
    for (const NamedEncoding& row : kEncodings)
        if (platform::EqualIgnoringCase(name, row.name)) return row.encoding;
    return Encoding::kPlain;
}

bool IsJapaneseCharset(std::string_view charset) {
    return platform::EqualIgnoringCase(charset, wire::kIso2022Jp);
}

bool RefusesDecoding(std::string_view text, Encoding encoding) {
    return encoding == Encoding::kBase64 && text.size() == 1;  // no room for a group of 3 bytes in 1 + 1
}

int DecodeBytes(std::string_view text, Encoding encoding, CString& out) {
    out.Empty();
    if (RefusesDecoding(text, encoding)) return 0;
    if (encoding == Encoding::kPlain) {
        out = CString(text);
        return 1;
    }
    const bool isBase64 = encoding == Encoding::kBase64;
    const std::size_t room = isBase64 ? CBase64Stream::MaxBytes(text.size()) + CBase64Stream::kLastBytes : text.size();
    unsigned char* const buffer = BytesOf(out.GetBufferSetLength(static_cast<int>(room)));
    const std::size_t made = isBase64 ? DecodeBase64(text, buffer)
                             : encoding == Encoding::kHex
                                 ? hexescapes::Decoder<hexescapes::PercentHex>::Decode(text, buffer)
                                 : hexescapes::Decoder<hexescapes::QuotedPrintable>::Decode(text, buffer);
    out.ReleaseBuffer(static_cast<int>(made));
    return 1;
}

int DecodeData(std::string_view text, Encoding encoding, std::string_view charset, CString& out) {
    const bool converts = IsJapaneseCharset(charset) && !text.empty();
    if (!converts || encoding != Encoding::kPlain) {
        if (!DecodeBytes(text, encoding, out)) return 0;
        text = out.View();
    }
    if (converts) CLanguage::JIS_SJIS(text.data(), static_cast<unsigned int>(text.size()), out);
    return 1;
}

int DecodeText(std::string_view text, Encoding encoding, std::string_view charset, CString& out) {
    const int decoded = DecodeData(text, encoding, charset, out);
    out.ReleaseBuffer(-1);
    return decoded;
}

}  // namespace parser

int CEMailPerser::GetContentType(const CString& text, int start, CString& type, CString& parameters, int* next) {
    parser::CEntity entity(parser::TextOf(text));
    int behind = next != nullptr ? *next : 0;
    const parser::ContentType& found = entity.GetContentType(start, behind);
    type = found.type;
    parameters = found.parameters;
    if (next != nullptr) *next = behind;
    return 1;
}

CString CEMailPerser::GetAttrValue(const CString& parameters, const char* name) {
    return parser::GetParameter(parser::TextOf(parameters), CString(name).View());
}

CString CEMailPerser::GetAttrValue_MultiLine(const CString& parameters, const char* name) {
    return parser::GetNumberedParameter(parser::TextOf(parameters), CString(name).View());
}

CString CEMailPerser::DecodeFieldValue(const CString& value) {
    return parser::DecodeFieldValue(parser::TextOf(value));
}

int CEMailPerser::Decode(const CString& text, const CString& encoding, const CString& charset, unsigned char* buffer,
                         unsigned int size, unsigned int& outputSize) {
    outputSize = 0;
    if (buffer == nullptr) return 0;
    std::fill_n(buffer, size, static_cast<unsigned char>(0));
    const parser::Decoder decode = parser::DecoderOf(parser::EncodingOf(encoding.View()));
    if (!decode(text, buffer, size, outputSize)) return 0;
    if (parser::IsJapaneseCharset(charset.View())) {
        CString converted;
        CLanguage::JIS_SJIS(reinterpret_cast<const char*>(buffer), outputSize, converted);
        std::fill_n(buffer, size, static_cast<unsigned char>(0));
        outputSize = std::min(static_cast<unsigned int>(converted.View().size()), size);
        std::memcpy(buffer, converted.View().data(), outputSize);
    }
    if (outputSize < size) buffer[outputSize] = 0;
    return 1;
}
