#include <algorithm>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/PartLimit.h>
#include <string_view>
#include <vector>

#include <mailengine/parser/EMailPerser.h>

namespace hostkit {

namespace {

constexpr std::string_view kParameter = "boundary";
constexpr std::string_view kDelimiterTop = "\n--";

class WordDecoder : private CEMailPerser {
public:
    std::string Decoded(const std::string& value) { return std::string(DecodeFieldValue(CString(value)).View()); }
};

bool IsBlank(char ch) {
    return ch == ' ' || ch == '\t' || ch == '\r' || ch == '\n';
}

std::size_t SkipBlanks(std::string_view text, std::size_t at) {
    while (at < text.size() && IsBlank(text[at]))
        ++at;
    return at;
}

// The value at offset at, unfolded, without quotes.
std::string ValueAt(std::string_view text, std::size_t at) {
    std::string value;
    const bool isQuoted = at < text.size() && text[at] == '"';
    for (at += isQuoted; at < text.size() && text[at] != ';' && text[at] != '"'; ++at) {
        if (text[at] != '\r' && text[at] != '\n') {
            value += text[at];
            continue;
        }
        const std::size_t next = SkipBlanks(text, at);
        const bool isFolded = next > at + 2 && IsBlank(text[next - 1]) && text[next - 1] != '\n';
        if (!isFolded) break;
        at = next - 1;
    }
    while (!value.empty() && IsBlank(value.back()))
        value.pop_back();
    return value.find("=?") == std::string::npos ? value : WordDecoder().Decoded(value);
}

// The boundaries that the text names, in order, without those that begin with another: a line that begins with one
// begins with its head.
std::vector<std::string> BoundariesIn(std::string_view text) {
    const auto isSame = [](char one, char other) { return (one | 0x20) == other; };
    std::vector<std::string> boundaries;
    for (auto at = text.begin();;) {
        at = std::search(at, text.end(), kParameter.begin(), kParameter.end(), isSame);
        if (at == text.end()) break;
        at += static_cast<std::ptrdiff_t>(kParameter.size());
        const std::size_t equals = SkipBlanks(text, static_cast<std::size_t>(at - text.begin()));
        if (equals >= text.size() || text[equals] != '=') continue;
        std::string value = ValueAt(text, SkipBlanks(text, equals + 1));
        if (!value.empty()) boundaries.push_back(std::move(value));
    }
    std::sort(boundaries.begin(), boundaries.end());
    std::vector<std::string> heads;
    for (std::string& boundary : boundaries) {
        if (heads.empty() || !boundary.starts_with(heads.back())) heads.push_back(std::move(boundary));
    }
    return heads;
}

bool IsDelimiter(std::string_view line, const std::vector<std::string>& boundaries) {
    const auto above = std::upper_bound(boundaries.begin(), boundaries.end(), line);
    if (above == boundaries.begin() || !line.starts_with(*(above - 1))) return false;
    return !line.substr((above - 1)->size()).starts_with("--");
}

// Calls see with the rest of the text behind each line top that has two hyphens, as long as it wants more.
template <class See>
void ForEachHyphens(std::string_view text, See see) {
    for (std::size_t at = 0; (at = text.find(kDelimiterTop, at)) != std::string_view::npos;) {
        at += kDelimiterTop.size();
        if (!see(text.substr(at))) return;
    }
}

}  // namespace

std::string TooManyPartsText() {
    return Words("has more than {1} parts, which no real mail has; none of them was read", kMaxParts);
}

bool HasTooManyParts(const CString& mail) {
    int lines = 0;
    ForEachHyphens(mail.View(), [&](std::string_view) { return ++lines <= kMaxParts; });
    if (lines <= kMaxParts) return false;
    const std::vector<std::string> boundaries = BoundariesIn(mail.View());
    int parts = 0;
    ForEachHyphens(mail.View(), [&](std::string_view line) {
        parts += IsDelimiter(line, boundaries) ? 1 : 0;
        return parts <= kMaxParts;
    });
    return parts > kMaxParts;
}

}  // namespace hostkit
