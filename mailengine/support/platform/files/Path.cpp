#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/text/Unicode.h>

namespace {

constexpr char32_t kPrivateBase = 0xF700;          // U+F700 + 0xHH stands for a byte 0xHH without a character
constexpr std::string_view kRawByte = "\xFF\xFF";  // two digits behind it spell a byte of the native name
constexpr std::size_t kRawByteLength = 4;
constexpr std::string_view kDigits = "0123456789ABCDEF";

unsigned char ByteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool IsAscii(std::string_view text) {
    for (const char ch : text)
        if (static_cast<unsigned char>(ch) > 0x7F) return false;
    return true;
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

void AppendNative(std::string& native, std::string_view path, std::size_t at, const platform::Character& character) {
    if (character.code != platform::kNoCharacter)
        return platform::AppendUtf8(native, character.code == '\\' ? U'/' : character.code);
    for (std::size_t i = 0; i < character.bytes; ++i)
        platform::AppendUtf8(native, kPrivateBase + ByteAt(path, at + i));
}

std::string NativeOf(std::string_view path) {
    std::string native;
    for (std::size_t at = 0; at < path.size();) {
        if (const int byte = SpelledByte(path.substr(at)); byte >= 0) {
            native += static_cast<char>(byte);
            at += kRawByteLength;
            continue;
        }
        const platform::Character character = platform::CodePageCharacterAt(path, at);
        AppendNative(native, path, at, character);
        at += character.bytes;
    }
    return native;
}

// One character of a native path; what is no UTF-8 counts as single bytes without a code.
struct NativeUnit {
    std::string_view bytes;
    char32_t code;
};

NativeUnit UnitAt(std::string_view native, std::size_t at) {
    const platform::Character character = platform::Utf8CharacterAt(native, at);
    return {native.substr(at, character.bytes), character.code};
}

// Whether a unit is what a byte without a character became.
bool StandsForByte(const NativeUnit& unit) {
    return unit.code >= kPrivateBase && unit.code <= kPrivateBase + 0xFF;
}

// The library's bytes for one character, empty if it has none.
std::string LibraryCharacter(const NativeUnit& unit) {
    if (unit.code == '/') return "\\";
    if (unit.code == '\\' || unit.code == 0 || unit.code == platform::kNoCharacter) return {};
    std::string text;
    if (StandsForByte(unit)) {
        text += static_cast<char>(unit.code - kPrivateBase);
    } else if (const int code = platform::CodeOf(unit.code); code != -1) {
        platform::AppendCode(text, code);
    }
    return text;
}

std::string ShownName(const NativeUnit& unit) {
    std::string name = platform::NameOf(unit.code);
    if (unit.code >= 0xA0 || (unit.code >= 0x20 && unit.code < 0x7F)) name.append(" (").append(unit.bytes).append(")");
    return name;
}

std::string Complaint(const NativeUnit& unit) {
    if (unit.code == platform::kNoCharacter) {
        const unsigned char byte = ByteAt(unit.bytes, 0);
        return std::string("the byte 0x") + kDigits[byte >> 4] + kDigits[byte & 15] + " in the path is not UTF-8";
    }
    const char* const reason = unit.code == '\\' ? " inside a file name would be read as a separator"
                               : unit.code == 0  ? " cannot stand in a path"
                                                 : " in the path has no character of its own in code page 932";
    return ShownName(unit) + reason;
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
    if (!IsAscii(native)) return NativeOf(native);
    for (char& ch : native)
        if (ch == '\\') ch = '/';
    return native;
}

int platform::ToLibraryPath(std::string_view native, CString& path, std::string& error) {
    std::string text;
    for (std::size_t at = 0; at < native.size();) {
        const NativeUnit unit = UnitAt(native, at);
        const std::string character = LibraryCharacter(unit);
        if (character.empty()) {
            error = Complaint(unit);
            return 0;
        }
        text += character;
        at += unit.bytes.size();
    }
    // Private-use characters that stand for bytes can make a pair together, which is another character then.
    if (const std::string back = NativeOf(text); back != native) {
        error = Complaint(FirstDifference(native, back));
        return 0;
    }
    path = CString(std::move(text));
    return 1;
}

CString platform::ToLibraryName(std::string_view nativeName) {
    if (IsAscii(nativeName) && nativeName.find('\\') == std::string_view::npos) return CString(nativeName);
    std::string plain;    // characters that stand for a byte given back as that byte
    std::string spelled;  // the same with them spelled, so that no two bytes can make a pair
    for (std::size_t at = 0; at < nativeName.size();) {
        const NativeUnit unit = UnitAt(nativeName, at);
        const std::string character = LibraryCharacter(unit);
        plain += character.empty() ? Spell(unit.bytes) : character;
        spelled += character.empty() || StandsForByte(unit) ? Spell(unit.bytes) : character;
        at += unit.bytes.size();
    }
    return CString(NativeOf(plain) == nativeName ? std::move(plain) : std::move(spelled));
}
