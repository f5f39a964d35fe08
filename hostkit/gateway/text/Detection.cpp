#include <algorithm>
#include <hostkit/characters/Utf8.h>
#include <hostkit/gateway/text/Charsets.h>
#include <hostkit/gateway/text/Detection.h>
#include <hostkit/gateway/text/Iso2022.h>
#include <memory>
#include <uchardet/uchardet.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit::gateway {
namespace {

constexpr std::size_t kLookedAt = 64 << 10;  // more bytes than that decide nothing new

bool IsKana(char32_t c) {
    return c >= 0x3041 && c <= 0x30FE;
}
bool IsIdeograph(char32_t c) {
    return c >= 0x4E00 && c <= 0x9FFF;
}
bool IsLetter(char32_t c) {
    return c < 0x80 && ((c | 0x20) >= 'a' && (c | 0x20) <= 'z');
}

// What Japanese texts set beside letters: brackets, figures in circles, units, wide Latin letters.
bool IsJapaneseSign(char32_t c) {
    return (c >= 0x3000 && c <= 0x3020) || (c >= 0x2460 && c <= 0x2473) || (c >= 0x3220 && c <= 0x33FF) ||
           (c >= 0xFF01 && c <= 0xFF5E);
}

// JIS X 0208's first level holds the kanji in use; what a foreign charset is misread as lies mostly outside.
bool IsCommonKanji(char32_t c) {
    const int code = IsIdeograph(c) ? platform::CodeOf(c) : -1;
    return code >= 0x889F && code <= 0x9872;
}

// How Japanese a reading is, by its characters: above 0 it is likely. Rare kanji among Latin letters are what accents
// become when they are misread.
int Likelihood(std::string_view utf8) {
    int points = 0;
    char32_t before = ' ';
    for (std::size_t i = 0; i < utf8.size();) {
        const platform::Character at = platform::Utf8CharacterAt(utf8, i);
        if (IsKana(at.code))
            points += 3;
        else if (IsCommonKanji(at.code))
            points += IsLetter(before) ? 0 : 2;
        else if (IsIdeograph(at.code))
            points += IsLetter(before) ? -3 : -1;
        else if (at.code >= 0xFF61 && at.code <= 0xFF9F)
            points += -1;
        else if (IsJapaneseSign(at.code))
            points += 1;
        else if (at.code >= 0xE000 && at.code <= 0xF8FF)
            points += -4;
        before = at.code;
        i += at.bytes;
    }
    return points;
}

// 0 where the bytes are not valid in that charset.
int LikelihoodAs(std::string_view bytes, std::string_view charset) {
    std::size_t faults = 0;
    const std::string text = ToUtf8(bytes, charset, faults);
    return faults == 0 ? Likelihood(text) : 0;
}

std::string AskUchardet(std::string_view bytes) {
    const std::unique_ptr<struct uchardet, decltype(&uchardet_delete)> judge(uchardet_new(), &uchardet_delete);
    if (uchardet_handle_data(judge.get(), bytes.data(), bytes.size()) != 0) return "";
    uchardet_data_end(judge.get());
    return uchardet_get_charset(judge.get());
}

// Few accents among many letters: a language of Western Europe, where guesses by frequencies have too little to go by.
bool IsMostlyAscii(std::string_view bytes) {
    const auto high =
        std::count_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    return high < 24 && static_cast<std::size_t>(high) * 4 < bytes.size();
}

// The head of the text that is looked at; it ends at a line, so that no character is cut.
std::string_view HeadOf(std::string_view bytes) {
    if (bytes.size() <= kLookedAt) return bytes;
    const std::size_t end = bytes.rfind('\n', kLookedAt);
    return bytes.substr(0, end == std::string_view::npos ? kLookedAt : end);
}

}  // namespace

std::string DetectCharset(std::string_view bytes) {
    if (HasIso2022Escapes(bytes)) return "iso-2022-jp";
    if (IsUtf8(bytes)) return "utf-8";
    const std::string_view head = HeadOf(bytes);
    const int asShiftJis = LikelihoodAs(head, "cp932");
    const int asEuc = LikelihoodAs(head, "euc-jp");
    if (asShiftJis > 0 || asEuc > 0) return asShiftJis > asEuc ? "cp932" : "euc-jp";
    if (IsMostlyAscii(head)) return "windows-1252";
    const std::string guess = AskUchardet(head);
    std::size_t faults = 0;
    if (!guess.empty()) ToUtf8(head, guess, faults);
    return guess.empty() || faults != 0 ? "windows-1252" : guess;
}

}  // namespace hostkit::gateway
