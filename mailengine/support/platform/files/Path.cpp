#include <array>
#include <cstdint>
#include <iconv.h>

#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/text/Characters.h>

namespace {

constexpr char kCodePage[] = "CP932";
constexpr std::uint32_t kPrivateBase = 0xF700;     // U+F700 + 0xHH stands for a byte 0xHH without a character
constexpr std::string_view kRawByte = "\xFF\xFF";  // two digits behind it spell a byte of the native name
constexpr std::size_t kRawByteLength = 4;
constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::uint32_t kNoCharacter = 0xFFFFFFFF;

unsigned char ByteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

// A conversion of single characters by libc. Where libc has none, nothing converts.
class Converter {
public:
    Converter(const char* to, const char* from) : m_conversion(iconv_open(to, from)) {}
    ~Converter() {
        if (IsOpen()) iconv_close(m_conversion);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // Empty: there is no such character on the other side.
    std::string Convert(std::string_view character) const {
        if (!IsOpen()) return {};
        std::array<char, 8> output;
        char* in = const_cast<char*>(character.data());  // iconv reads only
        char* out = output.data();
        std::size_t inLeft = character.size();
        std::size_t outLeft = output.size();
        const std::size_t substituted = iconv(m_conversion, &in, &inLeft, &out, &outLeft);
        if (substituted == 0 && inLeft == 0) return std::string(output.data(), out);
        iconv(m_conversion, nullptr, nullptr, nullptr, nullptr);
        return {};
    }

private:
    bool IsOpen() const { return m_conversion != reinterpret_cast<iconv_t>(-1); }
    iconv_t m_conversion;
};

// The two directions of one path. They are made for a path that is not plain ASCII only.
struct Converters {
    Converter toUtf8{"UTF-8", kCodePage};
    Converter toCodePage{kCodePage, "UTF-8"};
};

bool IsAscii(std::string_view text) {
    for (const char ch : text)
        if (static_cast<unsigned char>(ch) > 0x7F) return false;
    return true;
}

// U+F700 to U+F7FF, in UTF-8.
std::string PrivateCharacter(unsigned char byte) {
    const std::uint32_t code = kPrivateBase + byte;
    return {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
            static_cast<char>(0x80 | (code & 0x3F))};
}

// The byte that a spelling at the front of text stands for, -1 if there is none. A byte that could be a separator, a
// dot or a NUL is never spelled.
int SpelledByte(std::string_view text) {
    if (text.size() < kRawByteLength || !text.starts_with(kRawByte)) return -1;
    const std::size_t high = kDigits.find(text[2]);
    const std::size_t low = kDigits.find(text[3]);
    if (high == std::string_view::npos || low == std::string_view::npos) return -1;
    const int byte = static_cast<int>(high * 16 + low);
    return byte > 0x7F || byte == '\\' ? byte : -1;
}

std::string Spell(std::string_view bytes) {
    std::string spelled;
    for (const char ch : bytes) {
        const auto byte = static_cast<unsigned char>(ch);
        spelled.append(kRawByte).append({kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return spelled;
}

std::string NativeCharacter(std::string_view character, const Converter& toUtf8) {
    if (character.size() == 1 && ByteAt(character, 0) < 0x80) return std::string(character == "\\" ? "/" : character);
    std::string native = toUtf8.Convert(character);
    if (!native.empty()) return native;
    for (const char ch : character)
        native += PrivateCharacter(static_cast<unsigned char>(ch));
    return native;
}

std::string NativeOf(std::string_view path, const Converter& toUtf8) {
    std::string native;
    for (std::size_t at = 0; at < path.size();) {
        if (const int byte = SpelledByte(path.substr(at)); byte >= 0) {
            native += static_cast<char>(byte);
            at += kRawByteLength;
            continue;
        }
        const std::size_t bytes = platform::CharacterBytes(path, at);
        native += NativeCharacter(path.substr(at, bytes), toUtf8);
        at += bytes;
    }
    return native;
}

// One character of a native path; what is no UTF-8 counts as single bytes without a code.
struct NativeUnit {
    std::string_view bytes;
    std::uint32_t code;
};

// The bytes of a UTF-8 character that begins with lead, 1 for a byte that begins none (RFC 3629 section 4).
std::size_t Utf8Bytes(unsigned char lead) {
    if (lead < 0xC2 || lead > 0xF4) return 1;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

NativeUnit UnitAt(std::string_view native, std::size_t at) {
    const unsigned char lead = ByteAt(native, at);
    const NativeUnit byte{native.substr(at, 1), lead < 0x80 ? lead : kNoCharacter};
    const std::size_t count = Utf8Bytes(lead);
    if (count == 1 || at + count > native.size()) return byte;
    std::uint32_t code = lead & (0xFFU >> (count + 1));
    for (std::size_t i = 1; i < count; ++i) {
        const unsigned char next = ByteAt(native, at + i);
        if ((next & 0xC0) != 0x80) return byte;
        code = code << 6 | (next & 0x3F);
    }
    constexpr std::array<std::uint32_t, 5> kLowest = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kLowest[count] || code > 0x10FFFF || isSurrogate) return byte;
    return {native.substr(at, count), code};
}

// Whether a unit is what a byte without a character became.
bool StandsForByte(const NativeUnit& unit) {
    return unit.code >= kPrivateBase && unit.code <= kPrivateBase + 0xFF;
}

// The library's bytes for one character, empty if it has none that come back to it.
std::string LibraryCharacter(const NativeUnit& unit, const Converters& converters) {
    if (unit.code == '/') return "\\";
    if (unit.code == '\\' || unit.code == 0 || unit.code == kNoCharacter) return {};
    if (unit.code < 0x80) return std::string(unit.bytes);
    if (StandsForByte(unit)) return std::string(1, static_cast<char>(unit.code - kPrivateBase));
    std::string text = converters.toCodePage.Convert(unit.bytes);
    // A yen sign, say, converts to a backslash, which is another character.
    return !text.empty() && NativeOf(text, converters.toUtf8) == unit.bytes ? text : std::string();
}

std::string Utf8Name(const NativeUnit& unit) {
    std::string name = "U+";
    const int digits = unit.code > 0xFFFFF ? 6 : unit.code > 0xFFFF ? 5 : 4;
    for (int i = digits - 1; i >= 0; --i)
        name += kDigits[unit.code >> (4 * i) & 15];
    if (unit.code >= 0xA0 || (unit.code >= 0x20 && unit.code < 0x7F)) name.append(" (").append(unit.bytes).append(")");
    return name;
}

std::string Complaint(const NativeUnit& unit) {
    if (unit.code == kNoCharacter) {
        const unsigned char byte = ByteAt(unit.bytes, 0);
        return std::string("the byte 0x") + kDigits[byte >> 4] + kDigits[byte & 15] + " in the path is not UTF-8";
    }
    const char* const reason = unit.code == '\\' ? " inside a file name would be read as a separator"
                               : unit.code == 0  ? " cannot stand in a path"
                                                 : " in the path has no character of its own in code page 932";
    return Utf8Name(unit) + reason;
}

// The first unit of native that is no part of what its library form comes back to, the last one if that is longer.
NativeUnit FirstDifference(std::string_view native, std::string_view back) {
    NativeUnit unit = UnitAt(native, 0);
    for (std::size_t at = 0; at < native.size(); at += unit.bytes.size()) {
        unit = UnitAt(native, at);
        if (at > back.size() || back.substr(at, unit.bytes.size()) != unit.bytes) break;
    }
    return unit;
}

}  // namespace

std::string platform::ToNativePath(const char* path) {
    if (path == nullptr) return {};
    std::string native(path);
    if (!IsAscii(native)) return NativeOf(native, Converter("UTF-8", kCodePage));
    for (char& ch : native)
        if (ch == '\\') ch = '/';
    return native;
}

int platform::ToLibraryPath(std::string_view native, CString& path, std::string& error) {
    const Converters converters;
    std::string text;
    for (std::size_t at = 0; at < native.size();) {
        const NativeUnit unit = UnitAt(native, at);
        const std::string character = LibraryCharacter(unit, converters);
        if (character.empty()) {
            error = Complaint(unit);
            return 0;
        }
        text += character;
        at += unit.bytes.size();
    }
    // Private-use characters that stand for bytes can make a pair together, which is another character then.
    if (const std::string back = NativeOf(text, converters.toUtf8); back != native) {
        error = Complaint(FirstDifference(native, back));
        return 0;
    }
    path = CString(std::move(text));
    return 1;
}

CString platform::ToLibraryName(std::string_view nativeName) {
    if (IsAscii(nativeName) && nativeName.find('\\') == std::string_view::npos) return CString(nativeName);
    const Converters converters;
    std::string plain;    // characters that stand for a byte given back as that byte
    std::string spelled;  // the same with them spelled, so that no two bytes can make a pair
    for (std::size_t at = 0; at < nativeName.size();) {
        const NativeUnit unit = UnitAt(nativeName, at);
        const std::string character = LibraryCharacter(unit, converters);
        plain += character.empty() ? Spell(unit.bytes) : character;
        spelled += character.empty() || StandsForByte(unit) ? Spell(unit.bytes) : character;
        at += unit.bytes.size();
    }
    return CString(NativeOf(plain, converters.toUtf8) == nativeName ? std::move(plain) : std::move(spelled));
}
