#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include <mailengine/support/platform/text/Characters.h>
#include <mailengine/support/platform/text/String.h>

namespace {

constexpr std::size_t kNone = std::string_view::npos;

int OffsetOrNone(std::size_t at) {
    return at > INT_MAX ? -1 : static_cast<int>(at);
}

bool IsTrimmed(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

struct Conversion {
    bool plus = false;
    bool zero = false;
    int width = 0;
    int precision = 6;
    char kind = 0;
};

// Reads the conversion behind a percent sign and moves at behind it.
Conversion ParseConversion(std::string_view format, std::size_t& at) {
    Conversion result;
    const auto more = [&] { return at < format.size(); };
    const auto digits = [&](int& value) {
        for (value = 0; more() && format[at] >= '0' && format[at] <= '9' && value < 1000; ++at)
            value = value * 10 + (format[at] - '0');
    };
    for (; more() && (format[at] == '0' || format[at] == '+'); ++at)
        (format[at] == '0' ? result.zero : result.plus) = true;
    digits(result.width);
    if (more() && format[at] == '.') digits((++at, result.precision));
    if (more()) result.kind = format[at++];
    return result;
}

void AppendPadded(std::string& out, const Conversion& conversion, std::string_view sign, std::string_view text) {
    const std::size_t width = static_cast<std::size_t>(conversion.width);
    const std::size_t fill = width > sign.size() + text.size() ? width - sign.size() - text.size() : 0;
    if (!conversion.zero) out.append(fill, ' ');
    out.append(sign);
    if (conversion.zero) out.append(fill, '0');
    out.append(text);
}

void AppendNumber(std::string& out, const Conversion& conversion, std::string_view number) {
    const bool negative = number.starts_with('-');
    if (negative) number.remove_prefix(1);
    AppendPadded(out, conversion, negative ? "-" : conversion.plus ? "+" : "", number);
}

}  // namespace

CString::CString(const char* bytes, int length) {
    if (bytes != nullptr && length > 0) m_text.assign(bytes, static_cast<std::size_t>(length));
}

CString& CString::operator=(const char* text) {
    m_text = ViewOf(text);
    return *this;
}

CString& CString::operator+=(const CString& text) {
    m_text += text.m_text;
    return *this;
}

CString& CString::operator+=(const char* text) {
    m_text += ViewOf(text);
    return *this;
}

CString& CString::operator+=(char ch) {
    m_text += ch;
    return *this;
}

CString& CString::operator+=(std::string_view bytes) {
    m_text += bytes;
    return *this;
}

int CString::Find(char ch) const {
    return ch == 0 ? -1 : OffsetOrNone(platform::FindTextBeforeNul(m_text, {&ch, 1}));
}

int CString::Find(const char* text, int start) const {
    const std::size_t from = start > 0 ? static_cast<std::size_t>(start) : 0;
    if (from > m_text.size()) return -1;
    const std::size_t at = platform::FindTextBeforeNul(View().substr(from), ViewOf(text));
    return at == kNone ? -1 : OffsetOrNone(from + at);
}

int CString::ReverseFind(char ch) const {
    return ch == 0 ? -1 : OffsetOrNone(platform::FindLastCharacter(ViewOf(m_text.c_str()), ch));
}

CString CString::Left(int n) const {
    return Mid(0, n);
}

CString CString::Right(int n) const {
    const std::size_t count = n > 0 ? std::min(static_cast<std::size_t>(n), m_text.size()) : 0;
    return CString(View().substr(m_text.size() - count));
}

CString CString::Mid(int first, int count) const {
    const std::size_t from = first > 0 ? static_cast<std::size_t>(first) : 0;
    if (from >= m_text.size() || count <= 0) return {};
    return CString(View().substr(from, count == INT_MAX ? kNone : static_cast<std::size_t>(count)));
}

void CString::TrimLeft() {
    m_text.erase(m_text.begin(), std::find_if_not(m_text.begin(), m_text.end(), IsTrimmed));
}

void CString::TrimRight() {
    m_text.erase(std::find_if_not(m_text.rbegin(), m_text.rend(), IsTrimmed).base(), m_text.end());
}

int CString::Replace(const char* oldText, const char* newText) {
    const std::string_view needle = ViewOf(oldText);
    if (needle.empty()) return 0;
    int count = 0;
    std::string result;
    std::size_t done = 0;
    // A match ends with a character, so the next search may count its characters from there.
    for (std::size_t at; (at = platform::FindText(View().substr(done), needle)) != kNone; done += at + needle.size()) {
        result.append(m_text, done, at).append(ViewOf(newText));
        ++count;
    }
    if (count > 0) m_text = result.append(m_text, done);
    return count;
}

int CString::Replace(char oldChar, char newChar) {
    const std::string before = m_text;  // what is put in must not change where the characters of the rest begin
    int count = 0;
    for (std::size_t at = 0; (at = platform::FindText(before, {&oldChar, 1}, at)) != kNone; ++at, ++count)
        m_text[at] = newChar;
    return count;
}

void CString::FormatList(const char* format, std::initializer_list<FormatArgument> arguments) {
    constexpr std::size_t kLongestNumber = 512;  // a double of 309 digits with its fraction
    const std::string_view text = ViewOf(format);
    const FormatArgument* argument = arguments.begin();
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '%') {
            out += text[at++];
            continue;
        }
        const Conversion conversion = ParseConversion(text, ++at);
        if (conversion.kind == '%') out += '%';
        if (conversion.kind == '%' || argument == arguments.end()) continue;
        std::array<char, kLongestNumber> buffer;
        char* const first = buffer.data();
        char* const last = first + buffer.size();
        switch (conversion.kind) {
            case 's':
                AppendPadded(out, conversion, "", argument->m_text);
                break;
            case 'd':
                AppendNumber(out, conversion, {first, std::to_chars(first, last, argument->m_integer).ptr});
                break;
            case 'X': {
                char* const end = std::to_chars(first, last, static_cast<std::uint32_t>(argument->m_integer), 16).ptr;
                std::transform(first, end, first,
                               [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
                AppendNumber(out, conversion, {first, end});
                break;
            }
            case 'f': {
                const int precision = std::min(conversion.precision, 100);
                char* const end = std::to_chars(first, last, argument->m_real, std::chars_format::fixed, precision).ptr;
                AppendNumber(out, conversion, {first, end});
                break;
            }
            default:
                break;
        }
        ++argument;
    }
    m_text = std::move(out);
}

char* CString::GetBufferSetLength(int n) {
    m_text.assign(n > 0 ? static_cast<std::size_t>(n) : 0, '\0');
    return m_text.data();
}

void CString::ReleaseBuffer(int length) {
    const std::size_t given = length < 0 ? std::strlen(m_text.c_str()) : static_cast<std::size_t>(length);
    m_text.resize(std::min(given, m_text.size()));
}

CString CString::Join(std::string_view a, std::string_view b) {
    CString result;
    result.m_text.reserve(a.size() + b.size());
    result.m_text.append(a).append(b);
    return result;
}
