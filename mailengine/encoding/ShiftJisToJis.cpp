#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <mailengine/encoding/JisCodes.h>
#include <mailengine/encoding/Kana.h>
#include <mailengine/encoding/Language.h>

using jis::Cursor;

namespace {

using Byte = unsigned char;

enum class Kind : Byte { Single, Lead, Kana };

constexpr std::array<Kind, 256> MakeKinds() {
    std::array<Kind, 256> kinds{};
    for (std::size_t byte = 0; byte < 256; ++byte)
        kinds[byte] = platform::IsLeadByte(static_cast<Byte>(byte)) ? Kind::Lead
                      : kana::IsKana(static_cast<Byte>(byte))       ? Kind::Kana
                                                                    : Kind::Single;
    return kinds;
}
constexpr std::array<Kind, 256> kKinds = MakeKinds();

// What a lead and a trail byte add to row and cell: a trail byte from 0x9F counts one row up.
constexpr jis::Parts MakeLeadParts() {
    jis::Parts parts{};
    for (std::size_t lead = 0; lead < 256; ++lead)
        parts[lead] = kKinds[lead] == Kind::Lead ? jis::JisOf(static_cast<Byte>(lead), 0x40) >> 8 : jis::kNoPart;
    return parts;
}

constexpr jis::Parts MakeTrailParts() {
    jis::Parts parts{};
    for (std::size_t trail = 0; trail < 256; ++trail) {
        const std::uint32_t pair = jis::FirstLow(jis::JisOf(0x81, static_cast<Byte>(trail)));
        parts[trail] = pair != 0 ? pair - 0x21 : jis::kNoPart;
    }
    return parts;
}
constexpr jis::Parts kLeadParts = MakeLeadParts();
constexpr jis::Parts kTrailParts = MakeTrailParts();

std::uint32_t SumOf(const Byte* at) {
    return kLeadParts[at[0]] + kTrailParts[at[1]];
}

// Which marks a byte is, or a kana takes: 1 for the voiced, 2 for the semi-voiced.
constexpr unsigned MarkOf(Byte byte) {
    return (byte == kana::kVoicedMark ? 1u : 0u) | (byte == kana::kSemiVoicedMark ? 2u : 0u);
}

constexpr std::array<Byte, 256> MakeTakenMarks() {
    std::array<Byte, 256> marks{};
    for (std::size_t byte = kana::kFirst; byte <= kana::kLast; ++byte)
        for (const Byte mark : {kana::kVoicedMark, kana::kSemiVoicedMark})
            if (kana::Widen(static_cast<Byte>(byte), mark).bytes == 2)
                marks[byte] = static_cast<Byte>(marks[byte] | MarkOf(mark));
    return marks;
}
constexpr std::array<Byte, 256> kTakenMarks = MakeTakenMarks();

// Row and cell of each half-width kana, for each mark that may stand behind it.
using KanaTable = std::array<std::array<std::uint16_t, 256>, 3>;
constexpr KanaTable MakeKana() {
    KanaTable table{};
    for (std::size_t byte = kana::kFirst; byte <= kana::kLast; ++byte)
        for (const Byte next : {Byte{0}, kana::kVoicedMark, kana::kSemiVoicedMark}) {
            const unsigned code = kana::CodeOf(kana::Widen(static_cast<Byte>(byte), next).cell);
            table[MarkOf(next)][byte] = static_cast<std::uint16_t>(
                jis::FirstLow(jis::JisOf(static_cast<Byte>(code >> 8), static_cast<Byte>(code & 0xFF))));
        }
    return table;
}
constexpr KanaTable kKana = MakeKana();

bool Joins(Byte kana, Byte mark) {
    return (kTakenMarks[kana] & MarkOf(mark)) != 0;
}

// The runs below stop at end, at a byte of another kind, or once the output has reached full.

Cursor CopySingle(Cursor run, const Byte* end, const char* full) {
    auto [at, to] = run;
    while (at < end && to < full) {
        if (end - at >= 8) {
            const std::uint64_t word = jis::LoadWord(at);
            const std::size_t ascii = jis::BytesBeforeMark(word);
            std::memcpy(to, &word, sizeof word);
            at += ascii;
            to += ascii;
            if (ascii == 8) continue;
        }
        if (kKinds[*at] != Kind::Single) break;
        *to++ = static_cast<char>(*at++);
    }
    return {at, to};
}

// Every byte gives a character at once; one that was a mark of the kana in front is overwritten by the next. A mark at
// the top joins nothing: a run begins behind another character.
Cursor ConvertKana(Cursor run, const Byte* end, const char* full) {
    auto [at, to] = run;
    Byte before = 0;
    for (; at < end && to < full && kKinds[*at] == Kind::Kana; ++at) {
        jis::StorePair(kKana[MarkOf(at[1])][at[0]], to);
        to += Joins(before, *at) ? 0 : 2;
        before = *at;
    }
    return {at < end && Joins(before, *at) ? at + 1 : at, to};
}

Cursor ConvertDouble(Cursor run, const Byte* end, const char* full) {
    while (run.at < end && run.to < full && kKinds[*run.at] != Kind::Single) {
        if (kKinds[*run.at] == Kind::Kana) {
            run = ConvertKana(run, end, full);
        } else {
            run = jis::ConvertPairs<SumOf>(run, end + 1, full);  // the last trail byte may stand behind
            // a pair that is no character vanishes
            if (run.at < end && kKinds[*run.at] == Kind::Lead && SumOf(run.at) >= jis::kNoPart) run.at += 2;
        }
    }
    return run;
}

}  // namespace

void CLanguage::SJIS_JIS(const char* src, unsigned int len, CString& out) {
    // Escape sequences at line ends make it about a tenth longer; a string that has to move a long text costs as much
    // as the conversion. Room that is not used is never touched.
    if (len >= jis::Piece::kFull) out.Reserve(out.View().size() + len + len / 4);
    jis::Piece piece(out);
    Cursor run{reinterpret_cast<const Byte*>(src), piece.Top()};
    const Byte* const end = run.at + len;
    if (len == 0 || (kKinds[*run.at] == Kind::Single && !out.IsEmpty())) run.to = jis::Put(jis::kToSingleByte, run.to);
    bool doubleByte = false;
    while (run.at < end) {
        const bool single = kKinds[*run.at] == Kind::Single;
        if (single == doubleByte) run.to = jis::Put(single ? jis::kToSingleByte : jis::kToDoubleByte, run.to);
        doubleByte = !single;
        run = single ? CopySingle(run, end, piece.Full()) : ConvertDouble(run, end, piece.Full());
        if (run.to >= piece.Full()) run.to = piece.Flush(run.to);
    }
    if (doubleByte) run.to = jis::Put(jis::kToSingleByte, run.to);
    piece.Flush(run.to);
}
