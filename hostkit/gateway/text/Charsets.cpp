#include <algorithm>
#include <array>
#include <cerrno>
#include <hostkit/characters/Utf8.h>
#include <hostkit/gateway/text/Charsets.h>
#include <hostkit/gateway/text/Detection.h>
#include <hostkit/gateway/text/Iso2022.h>
#include <iconv.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit::gateway {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// What a name stands for in mail, where libc knows it as something narrower, or not at all.
struct Alias {
    std::string_view name;
    const char* meant;
};
constexpr std::array kAliases = {
    Alias{"shift_jis", "CP932"},
    Alias{"shift-jis", "CP932"},
    Alias{"sjis", "CP932"},
    Alias{"x-sjis", "CP932"},
    Alias{"ms_kanji", "CP932"},
    Alias{"windows-31j", "CP932"},
    Alias{"cswindows31j", "CP932"},
    Alias{"cp932", "CP932"},
    Alias{"ms932", "CP932"},
    Alias{"cp943", "CP932"},
    Alias{"csshiftjis", "CP932"},
    Alias{"euc-jp", "EUC-JP-MS"},
    Alias{"x-euc-jp", "EUC-JP-MS"},
    Alias{"eucjp", "EUC-JP-MS"},
    Alias{"ujis", "EUC-JP-MS"},
    Alias{"eucjp-ms", "EUC-JP-MS"},
    Alias{"eucjp-win", "EUC-JP-MS"},
    Alias{"cp51932", "EUC-JP-MS"},
    Alias{"euc-kr", "CP949"},
    Alias{"ks_c_5601-1987", "CP949"},
    Alias{"ks_c_5601", "CP949"},
    Alias{"ksc5601", "CP949"},
    Alias{"iso-2022-kr", "ISO-2022-KR"},
    Alias{"gb2312", "GB18030"},
    Alias{"gbk", "GB18030"},
    Alias{"x-gbk", "GB18030"},
    Alias{"gb_2312-80", "GB18030"},
    Alias{"big5", "BIG5-HKSCS"},
    Alias{"cn-big5", "BIG5-HKSCS"},
    Alias{"iso-8859-1", "CP1252"},
    Alias{"latin1", "CP1252"},
    Alias{"iso8859-1", "CP1252"},
    Alias{"iso_8859-1", "CP1252"},
    Alias{"iso-8859-9", "CP1254"},
    Alias{"ansi_x3.110-1983", "CP1252"},  // what programs of one system call it; nobody sends Videotex
    Alias{"iso-8859-8-i", "ISO-8859-8"},
    Alias{"iso-8859-6-i", "ISO-8859-6"},
    Alias{"x-mac-roman", "MACINTOSH"},
    Alias{"x-mac-japanese", "CP932"},
    Alias{"unicode-1-1-utf-7", "UTF-7"},
    Alias{"unicode-1-1-utf-8", "UTF-8"},
    Alias{"utf8", "UTF-8"},
    Alias{"utf8mb4", "UTF-8"},
    Alias{"utf_8", "UTF-8"},
    Alias{"unicode", "UTF-16"},
};
constexpr std::array<std::string_view, 16> kIso2022 = {
    "iso-2022-jp",   "iso-2022-jp-1", "iso-2022-jp-2", "iso-2022-jp-3", "iso-2022-jp-ms", "iso-2022-jp-2004",
    "csiso2022jp",   "csiso2022jp2",  "cp50220",       "cp50221",       "cp50222",        "iso2022-jp",
    "x-iso-2022-jp", "iso2022jp",     "jis",           "jis7"};

bool IsIso2022(std::string_view lower) {
    return std::find(kIso2022.begin(), kIso2022.end(), lower) != kIso2022.end();
}

std::string Lower(std::string_view name) {
    std::string lower;
    for (const char c : name)
        lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
    return lower;
}

std::string IconvNameOf(const std::string& lower) {
    const auto alias = std::find_if(kAliases.begin(), kAliases.end(), [&](const Alias& a) { return a.name == lower; });
    if (alias != kAliases.end()) return alias->meant;
    for (const std::string_view prefix : {"x-windows-", "windows-", "x-cp", "cp-"})
        if (lower.starts_with(prefix)) return "CP" + lower.substr(prefix.size());
    return lower.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-_.:+") == std::string::npos ? lower : "";
}

bool IsAscii(std::string_view bytes) {
    unsigned char all = 0;
    for (const char c : bytes)
        all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

std::string Utf8ToUtf8(std::string_view bytes, std::size_t& faults) {
    if (IsAscii(bytes)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const platform::Character character = platform::Utf8CharacterAt(bytes, i);
        const bool isFault = character.code == platform::kNoCharacter;
        text += isFault ? kReplacement : bytes.substr(i, character.bytes);
        faults += isFault;
        i += character.bytes;
    }
    return text;
}

// By the engine's own tables, which need no conversion to be opened for each word.
std::string CodePageToUtf8(std::string_view bytes, std::size_t& faults) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 2);
    for (std::size_t i = 0; i < bytes.size();) {
        const platform::Character character = platform::CodePageCharacterAt(bytes, i);
        const bool isFault = character.code == platform::kNoCharacter;
        platform::AppendUtf8(text, isFault ? 0xFFFD : character.code);
        faults += isFault;
        i += character.bytes;
    }
    return text;
}

class Iconv {
public:
    // Not by GMime's cache of conversions: it keeps every name that it was ever asked for.
    explicit Iconv(const std::string& charset)
        : m_conversion(charset.empty() ? kNone : iconv_open("UTF-8", charset.c_str())) {}
    ~Iconv() {
        if (IsOpen()) iconv_close(m_conversion);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    bool IsOpen() const { return m_conversion != kNone; }

    std::string Convert(std::string_view bytes, std::size_t& faults) {
        std::string text;
        text.reserve(bytes.size() + bytes.size() / 2);
        std::string source(bytes);  // iconv does not promise to leave its input alone
        char* in = source.data();
        std::size_t left = source.size();
        while (left > 0) {
            const bool isDone = Run(&in, &left, text);
            if (isDone) break;
            if (errno == E2BIG) continue;
            text += kReplacement;
            ++faults;
            ++in;
            --left;
        }
        Run(nullptr, nullptr, text);
        return text;
    }

private:
    bool Run(char** in, std::size_t* left, std::string& text) {
        std::array<char, 4096> piece;
        char* out = piece.data();
        std::size_t room = piece.size();
        const bool isDone = iconv(m_conversion, in, left, &out, &room) != static_cast<std::size_t>(-1);
        const int fault = errno;
        text.append(piece.data(), piece.size() - room);
        errno = fault;
        return isDone;
    }

    const iconv_t kNone = reinterpret_cast<iconv_t>(-1);
    iconv_t m_conversion;
};

// Names that say nothing, or that promise less than eight-bit bytes then break.
bool SaysNothing(const std::string& lower, std::string_view bytes) {
    constexpr std::array<std::string_view, 8> kNothing = {"",        "unknown",   "x-unknown", "unknown-8bit",
                                                          "default", "x-default", "8bit",      "_charset"};
    constexpr std::array<std::string_view, 5> kPlain = {"us-ascii", "ascii", "ansi_x3.4-1968", "iso646-us", "7bit"};
    if (std::find(kNothing.begin(), kNothing.end(), lower) != kNothing.end()) return true;
    return std::find(kPlain.begin(), kPlain.end(), lower) != kPlain.end() &&
           (!IsAscii(bytes) || HasIso2022Escapes(bytes));
}

// Whether a text with faults is rather one that was cut or harmed than one of another charset.
bool IsStillLikely(std::string_view text, std::size_t faults) {
    const auto beyond = static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0xC0; }));
    return faults == 0 || beyond - std::min(beyond, faults) > 4 * faults;
}

// Old programs sent Japanese under Western names; a byte that those do not have gives it away.
bool IsMislabelled(std::string_view bytes, const std::string& lower) {
    if (!IconvNameOf(lower).starts_with("CP125")) return false;
    const std::string charset = DetectCharset(bytes);
    return charset == "cp932" || charset == "euc-jp" || charset == "utf-8";
}

}  // namespace

std::string ToUtf8(std::string_view bytes, std::string_view charset, std::size_t& faults) {
    const std::string lower = Lower(charset);
    if (IsIso2022(lower)) return Iso2022ToUtf8(bytes, faults);
    const std::string name = IconvNameOf(lower);
    if (name == "UTF-8" || name == "utf-8") return Utf8ToUtf8(bytes, faults);
    if (name == "CP932") return CodePageToUtf8(bytes, faults);
    Iconv conversion(name);
    if (conversion.IsOpen()) return conversion.Convert(bytes, faults);
    faults += bytes.size();
    return "";
}

std::string RawToUtf8(std::string_view bytes, std::string_view letter) {
    std::size_t faults = 0;
    constexpr std::array<std::string_view, 4> kJudged = {"UTF-8", "CP932", "EUC-JP-MS", "CP1252"};
    const std::string lower = Lower(letter);
    const bool isJudged = SaysNothing(lower, bytes) || IsIso2022(lower) ||
                          std::find(kJudged.begin(), kJudged.end(), IconvNameOf(lower)) != kJudged.end();
    if (!isJudged && !IsAscii(bytes) && !IsUtf8(bytes)) {
        std::string text = ToUtf8(bytes, lower, faults);
        if (faults == 0) return text;
    }
    return TextToUtf8(bytes, "", faults);
}

std::string TextToUtf8(std::string_view bytes, std::string_view declared, std::size_t& faults) {
    const std::string lower = Lower(declared);
    if (!SaysNothing(lower, bytes)) {
        std::size_t found = 0;
        std::string text = ToUtf8(bytes, lower, found);
        const bool isBelieved = IsIso2022(lower)
                                    ? IsAscii(bytes) || HasIso2022Escapes(bytes)
                                    : IsStillLikely(text, found) && !(found > 0 && IsMislabelled(bytes, lower));
        if (isBelieved) {
            faults += found;
            return text;
        }
    }
    if (IsAscii(bytes) && !HasIso2022Escapes(bytes)) return std::string(bytes);
    return ToUtf8(bytes, DetectCharset(bytes), faults);
}

}  // namespace hostkit::gateway
