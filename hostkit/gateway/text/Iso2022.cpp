#include <algorithm>
#include <array>
#include <hostkit/gateway/text/Charsets.h>
#include <hostkit/gateway/text/Iso2022.h>

#include <mailengine/encoding/Language.h>
#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit::gateway {
namespace {

enum class Set { Ascii, Kana, Jis0208, Jis0212, Chinese, Korean };

struct Escape {
    std::string_view sequence;
    Set set;
};
constexpr std::array<Escape, 12> kEscapes = {{{"\x1b$B", Set::Jis0208},
                                              {"\x1b$@", Set::Jis0208},
                                              {"\x1b$(B", Set::Jis0208},
                                              {"\x1b$(@", Set::Jis0208},
                                              {"\x1b$(D", Set::Jis0212},
                                              {"\x1b(B", Set::Ascii},
                                              {"\x1b(J", Set::Ascii},
                                              {"\x1b(H", Set::Ascii},
                                              {"\x1b(I", Set::Kana},
                                              {"\x1b$A", Set::Chinese},
                                              {"\x1b$(C", Set::Korean},
                                              {"\x1b&@\x1b$B", Set::Jis0208}}};
constexpr char kEscape = '\x1b';
constexpr char kShiftOut = '\x0e';
constexpr char kShiftIn = '\x0f';

bool IsCell(char c) {
    return c >= 0x21 && c <= 0x7E;
}

std::string WithHighBits(std::string_view run, std::string_view prefix = "") {
    std::string high;
    for (std::size_t i = 0; i + 1 < run.size(); i += 2) {
        high += prefix;
        high += static_cast<char>(run[i] | 0x80);
        high += static_cast<char>(run[i + 1] | 0x80);
    }
    return high;
}

class Reader {
public:
    explicit Reader(std::string_view text) : m_text(text) {}
    std::string Read(std::size_t& faults) {
        while (m_at < m_text.size())
            Step();
        faults += m_faults;
        return std::move(m_utf8);
    }

private:
    void Step() {
        const char c = m_text[m_at];
        if (c == kEscape && TakeEscape()) return;
        if (c == kShiftOut || c == kShiftIn) {
            m_set = c == kShiftOut ? Set::Kana : Set::Ascii;
            ++m_at;
        } else if (c == '\r' || c == '\n') {
            m_set = Set::Ascii;
            m_utf8 += c;
            ++m_at;
        } else if (m_set == Set::Ascii || (m_set != Set::Kana && !IsCell(c))) {
            TakePlain();
        } else if (m_set == Set::Kana) {
            TakeKana(c);
        } else {
            TakePairs();
        }
    }

    bool TakeEscape() {
        const std::string_view rest = m_text.substr(m_at);
        for (const Escape& escape : kEscapes) {
            if (!rest.starts_with(escape.sequence)) continue;
            m_set = escape.set;
            m_at += escape.sequence.size();
            return true;
        }
        return false;
    }

    // Up to the next byte that means something else. An escape that is not known stays as it is.
    void TakePlain() {
        const std::size_t end = std::min(m_text.find_first_of("\x1b\x0e\x0f\r\n", m_at + 1), m_text.size());
        std::size_t from = m_at;
        for (; m_at < end && static_cast<unsigned char>(m_text[m_at]) < 0x80; ++m_at) {
        }
        m_utf8 += m_text.substr(from, m_at - from);
        if (m_at == end) return;
        m_utf8 += ToUtf8(m_text.substr(m_at, end - m_at), "cp932", m_faults);
        m_at = end;
    }

    void TakeKana(char c) {
        const char32_t character = c >= 0x21 && c <= 0x5F ? char32_t(0xFF61 + c - 0x21) : static_cast<unsigned char>(c);
        if (static_cast<unsigned char>(c) >= 0x80) return TakePlain();
        platform::AppendUtf8(m_utf8, character);
        ++m_at;
    }

    void TakePairs() {
        std::size_t end = m_at;
        while (end < m_text.size() && IsCell(m_text[end]))
            ++end;
        if ((end - m_at) % 2 != 0) {
            ++m_faults;  // half a character, which is left out
            if (end - m_at == 1) return void(++m_at);
            --end;
        }
        m_utf8 += ReadPairs(m_text.substr(m_at, end - m_at));
        m_at = end;
    }

    std::string ReadPairs(std::string_view run) {
        if (m_set == Set::Jis0212) return ToUtf8(WithHighBits(run, "\x8f"), "euc-jp", m_faults);
        if (m_set == Set::Chinese) return ToUtf8(WithHighBits(run), "gb2312", m_faults);
        if (m_set == Set::Korean) return ToUtf8(WithHighBits(run), "euc-kr", m_faults);
        CString codes;
        const std::string wrapped = "\x1b$B" + std::string(run);
        CLanguage::JIS_SJIS(wrapped.c_str(), static_cast<unsigned int>(wrapped.size()), codes);
        return ToUtf8(codes.View(), "cp932", m_faults);
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    Set m_set = Set::Ascii;
    std::string m_utf8;
    std::size_t m_faults = 0;
};

}  // namespace

bool HasIso2022Escapes(std::string_view text) {
    for (std::size_t at = text.find(kEscape); at != std::string_view::npos; at = text.find(kEscape, at + 1)) {
        for (const Escape& escape : kEscapes)
            if (escape.set != Set::Ascii && text.substr(at).starts_with(escape.sequence)) return true;
    }
    return false;
}

std::string Iso2022ToUtf8(std::string_view text, std::size_t& faults) {
    return Reader(text).Read(faults);
}

}  // namespace hostkit::gateway
