#include <array>
#include <cerrno>
#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/support/platform/text/Unicode.h>

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr int kFirstTrail = 0x40;
constexpr int kLastTrail = 0xFC;

struct Rows {
    int first;
    int last;
};
// Lead bytes in the order in which their codes are preferred. What stands in no row comes last, and is not carried.
constexpr Rows kCarriedRows[] = {
    {0x81, 0x84}, {0x88, 0x9F}, {0xE0, 0xEA},  // JIS X 0208
    {0x87, 0x87},                              // NEC's row 13
    {0xED, 0xEE},                              // NEC's selection of the IBM extension
};

bool IsCarried(int code) {
    if (code <= 0xFF) return true;
    for (const Rows& rows : kCarriedRows)
        if (code >> 8 >= rows.first && code >> 8 <= rows.last) return true;
    return false;
}

class Converter {
public:
    Converter() : m_conversion(iconv_open("UTF-16LE", "CP932")) {
        if (m_conversion == reinterpret_cast<iconv_t>(-1)) throw Reason(errno);
    }
    ~Converter() { iconv_close(m_conversion); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // libc tells a conversion that it has no file for from one whose file it cannot open by nothing.
    static int Reason(int error) {
        const int file = error == EINVAL ? open("/", O_PATH | O_CLOEXEC) : -1;
        if (file >= 0) close(file);
        return file >= 0 || error != EINVAL ? error : errno;
    }

    // 0: the code stands for no character, or for none of the first plane.
    char16_t CharacterOf(int code) const {
        char bytes[] = {static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
        unsigned char utf16[4];
        char* in = code > 0xFF ? bytes : bytes + 1;
        char* out = reinterpret_cast<char*>(utf16);
        std::size_t inLeft = code > 0xFF ? 2 : 1;
        std::size_t outLeft = sizeof utf16;
        const bool isTaken = iconv(m_conversion, &in, &inLeft, &out, &outLeft) == 0;
        iconv(m_conversion, nullptr, nullptr, nullptr, nullptr);
        return isTaken && outLeft == 2 ? static_cast<char16_t>(utf16[0] | utf16[1] << 8) : u'\0';
    }

private:
    iconv_t m_conversion;
};

// Both directions of all that is not ASCII. It owns nothing, so the library can be unloaded.
class Tables {
public:
    // Throws the errno of a libc that has no conversion now.
    Tables();
    char16_t CharacterOf(int code) const { return m_characters[static_cast<std::size_t>(code)]; }
    int CodeOf(char32_t character) const { return character < m_codes.size() ? m_codes[character] : 0; }

private:
    void Prefer(int first, int last);

    std::array<char16_t, 0x10000> m_characters{};  // by code; 0: none
    std::array<std::uint16_t, 0x10000> m_codes{};  // by character; 0: none
};

Tables::Tables() {
    const Converter converter;
    for (int lead = 0x80; lead <= 0xFF; ++lead) {
        m_characters[static_cast<std::size_t>(lead)] = converter.CharacterOf(lead);
        if (!platform::IsLeadByte(static_cast<unsigned char>(lead))) continue;
        for (int trail = kFirstTrail; trail <= kLastTrail; ++trail)
            m_characters[static_cast<std::size_t>(lead << 8 | trail)] = converter.CharacterOf(lead << 8 | trail);
    }
    Prefer(0x80, 0xFF);
    for (const Rows& rows : kCarriedRows)
        Prefer(rows.first << 8, rows.last << 8 | 0xFF);
    Prefer(0x8100, 0xFFFF);
}

void Tables::Prefer(int first, int last) {
    for (int code = first; code <= last; ++code) {
        const char16_t character = CharacterOf(code);
        if (character >= 0x80 && m_codes[character] == 0) m_codes[character] = static_cast<std::uint16_t>(code);
    }
}

// Null: libc has no conversion now; then error says why. It is asked again at the next call.
const Tables* FindTables(int& error) {
    try {
        static const Tables tables;
        return &tables;
    } catch (int number) {
        error = number;
        return nullptr;
    }
}

const Tables* FindTables() {
    int ignored = 0;
    return FindTables(ignored);
}

// Bytes of the UTF-8 character that lead begins, 0 if it begins none.
std::size_t Utf8Bytes(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

bool IsShortestCharacter(char32_t code, std::size_t bytes) {
    constexpr char32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
    return code >= kLowest[bytes] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

}  // namespace

platform::Character platform::Utf8CharacterAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t bytes = Utf8Bytes(lead);
    if (bytes == 1) return {lead, 1};
    if (bytes == 0 || bytes > text.size() - at) return {};
    char32_t code = lead & (0x7Fu >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80) return {};
        code = code << 6 | (next & 0x3Fu);
    }
    return IsShortestCharacter(code, bytes) ? Character{code, bytes} : Character{};
}

platform::Character platform::CodePageCharacterAt(std::string_view text, std::size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) return {first, 1};
    const std::size_t bytes = CharacterBytes(text, at);
    const int code = bytes == 1 ? first : first << 8 | static_cast<unsigned char>(text[at + 1]);
    const Tables* const tables = FindTables();
    const char16_t character = tables != nullptr ? tables->CharacterOf(code) : u'\0';
    return {character == 0 ? kNoCharacter : character, bytes};
}

void platform::AppendUtf8(std::string& text, char32_t character) {
    const auto tail = [&](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        const char bytes[] = {static_cast<char>(0xC0 | character >> 6), tail(0)};
        text.append(bytes, sizeof(bytes));
    } else if (character < 0x10000) {
        const char bytes[] = {static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)};
        text.append(bytes, sizeof(bytes));
    } else {
        const char bytes[] = {static_cast<char>(0xF0 | character >> 18), tail(12), tail(6), tail(0)};
        text.append(bytes, sizeof(bytes));
    }
}

int platform::CodeOf(char32_t character) {
    if (character < 0x80) return static_cast<int>(character);
    const Tables* const tables = FindTables();
    const int code = tables != nullptr ? tables->CodeOf(character) : 0;
    return code == 0 ? -1 : code;
}

int platform::CarriedCodeOf(char32_t character) {
    const int code = CodeOf(character);
    return IsCarried(code) ? code : -1;
}

void platform::AppendCode(std::string& text, int code) {
    if (code > 0xFF) text += static_cast<char>(code >> 8);
    text += static_cast<char>(code & 0xFF);
}

std::string platform::NameOf(char32_t character) {
    std::string name = "U+";
    for (int shift = 20; shift >= 0; shift -= 4)
        if (shift < 16 || character >> shift != 0) name += kHexDigits[character >> shift & 0xF];
    return name;
}

int platform::CodePageError() {
    int error = 0;
    FindTables(error);
    return error;
}
