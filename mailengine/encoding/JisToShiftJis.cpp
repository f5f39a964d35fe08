#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

#include <mailengine/encoding/JisCodes.h>
#include <mailengine/encoding/Language.h>

using jis::Cursor;

namespace {

using Byte = unsigned char;

// What a row and a cell byte add to lead and trail byte; the cell counts otherwise in every second row.
constexpr jis::Parts MakeRowParts() {
    jis::Parts parts{};
    for (std::size_t row = 0; row < 256; ++row) {
        const std::uint32_t pair = jis::FirstLow(jis::ShiftJisOf(static_cast<Byte>(row), 0x21));
        parts[row] = pair != 0 ? pair & 0xFF : jis::kNoPart;
    }
    return parts;
}

constexpr jis::Parts MakeCellParts(Byte row) {
    jis::Parts parts{};
    for (std::size_t cell = 0; cell < 256; ++cell) {
        const std::uint32_t pair = jis::FirstLow(jis::ShiftJisOf(row, static_cast<Byte>(cell)));
        parts[cell] = pair != 0 ? pair & 0xFF00 : jis::kNoPart;
    }
    return parts;
}
constexpr jis::Parts kRowParts = MakeRowParts();
constexpr std::array<jis::Parts, 2> kCellParts{MakeCellParts(0x22), MakeCellParts(0x21)};

std::uint32_t SumOf(const Byte* at) {
    return kRowParts[at[0]] + kCellParts[at[0] & 1][at[1]];
}

// The runs below stop at end or once the output has reached full.

// Stops in front of an escape, and of a NUL.
Cursor CopySingle(Cursor run, const Byte* end, const char* full) {
    constexpr std::uint64_t kEscapes = 0x0101010101010101u * jis::kEscape;
    auto [at, to] = run;
    while (end - at >= 8 && to < full) {
        const std::uint64_t word = jis::LoadWord(at);
        const std::size_t bytes = jis::BytesBeforeMark(jis::MarkZeros(word) | jis::MarkZeros(word ^ kEscapes));
        std::memcpy(to, &word, sizeof word);
        at += bytes;
        to += bytes;
        if (bytes < 8) return {at, to};
    }
    while (at < end && to < full && *at != jis::kEscape && *at != 0)
        *to++ = static_cast<char>(*at++);
    return {at, to};
}

// Reads ISO-2022-JP: the common sequences and runs at once, all else byte by byte. The three flags of a begun escape
// sequence stand apart on purpose: a new escape does not undo a begun one, and an escape does not undo half a
// character.
class JisReader {
public:
    // Takes a run or a byte, at least one byte. false: the result would hold a NUL there, where the text ends.
    bool Take(Cursor& run, const Byte* end, const char* full) {
        if (!m_escape && !m_single && !m_double) {
            if (TakeSequence(run, end)) return true;
            const Byte* const top = run.at;
            if (!m_kanji) run = CopySingle(run, end, full);
            if (m_kanji && !m_half) run = jis::ConvertPairs<SumOf>(run, end, full);
            if (run.at != top) return true;
        }
        return TakeByte(run);
    }

private:
    // ESC $ B and ESC ( B as a whole; TakeByte would come to the same flags.
    bool TakeSequence(Cursor& run, const Byte* end) {
        if (end - run.at < 3 || run.at[0] != jis::kEscape || run.at[2] != 'B') return false;
        if (run.at[1] != '$' && run.at[1] != '(') return false;
        m_plain = false;
        m_kanji = run.at[1] == '$';
        run.at += 3;
        return true;
    }

    bool TakeByte(Cursor& run) {
        const Byte byte = *run.at++;
        if (byte == jis::kEscape) {
            m_escape = true;
            m_plain = false;
            return true;
        }
        return (!m_plain && TakeEscape(byte)) || TakeData(byte, run);
    }

    bool TakeEscape(Byte byte) {
        if (m_escape && byte == '(') return GoOn(m_escape, m_single);
        if (m_escape && byte == '$') return GoOn(m_escape, m_double);
        if (m_single && (byte == 'B' || byte == 'J' || byte == 'H' || byte == 'I')) return Switch(m_single, false);
        if (m_double && (byte == '@' || byte == 'B')) return Switch(m_double, true);
        m_escape = m_single = m_double = false;
        return false;
    }

    static bool GoOn(bool& from, bool& to) {
        from = false;
        return to = true;
    }

    bool Switch(bool& flag, bool kanji) {
        flag = false;
        m_kanji = kanji;
        return true;
    }

    // The half of a character is the byte in front, be it the last one of an escape sequence.
    bool TakeData(Byte byte, Cursor& run) {
        if (!m_kanji) {
            if (byte != 0) *run.to++ = static_cast<char>(byte);
            return byte != 0;
        }
        m_half = !m_half;
        if (m_half) return true;
        const std::uint32_t sum = SumOf(run.at - 2);
        if (sum >= jis::kNoPart) return false;
        jis::StorePair(sum, run.to);
        run.to += 2;
        return true;
    }

    bool m_plain = true;
    bool m_escape = false, m_single = false, m_double = false;  // ESC was read; ESC ( was; ESC $ was
    bool m_kanji = false;
    bool m_half = false;
};

void Convert(Cursor run, const Byte* end, jis::Piece& piece) {
    JisReader reader;
    while (run.at < end && reader.Take(run, end, piece.Full()))
        if (run.to >= piece.Full()) run.to = piece.Flush(run.to);
    piece.Flush(run.to);
}

bool LiesInside(const char* src, std::string_view text) {
    return std::less_equal<>()(text.data(), src) && std::less_equal<>()(src, text.data() + text.size());
}

}  // namespace

void CLanguage::JIS_SJIS(const char* src, unsigned int len, CString& out) {
    if (src == nullptr) return;
    CString aside;
    const bool inside = LiesInside(src, out.View());
    CString& target = inside ? aside : out;
    target.Empty();
    target.Reserve(len);  // no rule writes more bytes than it reads
    jis::Piece piece(target);
    const Byte* const top = reinterpret_cast<const Byte*>(src);
    Convert({top, piece.Top()}, top + len, piece);
    if (inside) out = std::move(aside);
}
