#include <mailengine/encoding/Base64Vector.h>

#ifdef __x86_64__

#include <array>
#include <bit>
#include <cstdint>
#include <immintrin.h>

#define MAILENGINE_AVX2 __attribute__((target("avx2")))

namespace base64 {
namespace {

// A byte for each value of a nibble, twice, since the vector unit looks up in halves of 16 bytes.
using NibbleTable = std::array<char, 32>;

constexpr char RowBit(int row) {
    return static_cast<char>(row >= 2 && row <= 7 ? 1 << (row - 2) : 1 << 6);
}

constexpr bool IsDigit(int row, int column) {
    return GroupOf(std::array{'A', 'A', 'A', static_cast<char>(row << 4 | column)}.data()) < kNoDigit;
}

// Rows and columns are the high and low nibble of a character. Each row with digits has a bit, the others share one,
// and a column holds the bits of those rows where it is no digit: a character is bad if both have a bit in common.
constexpr NibbleTable MakeRowBits() {
    NibbleTable table{};
    for (int i = 0; i < 32; ++i)
        table[static_cast<std::size_t>(i)] = RowBit(i % 16);
    return table;
}

constexpr NibbleTable MakeBadRows() {
    NibbleTable table{};
    for (int i = 0; i < 32; ++i)
        for (int row = 0; row < 16; ++row)
            if (!IsDigit(row, i % 16)) table[static_cast<std::size_t>(i)] |= RowBit(row);
    return table;
}

// What is added to a digit of a row to get its value. The slash differs from the plus of its row and takes the place
// of row 1, which has no digits.
constexpr NibbleTable MakeValueSteps() {
    NibbleTable table{};
    for (std::size_t half = 0; half < 32; half += 16)
        for (int value = 62; value >= 0; --value)
            table[half + static_cast<std::size_t>(kAlphabet[value] >> 4)] = static_cast<char>(value - kAlphabet[value]);
    table[1] = table[17] = 63 - '/';
    return table;
}

// What is added to a value to get its digit: 0 for the small letters, 1 to 10 for the figures, then plus, slash, and
// 13 for the capitals.
constexpr NibbleTable MakeDigitSteps() {
    NibbleTable table{};
    for (std::size_t half = 0; half < 32; half += 16) {
        table[half] = 'a' - 26;
        for (std::size_t figure = 1; figure <= 10; ++figure)
            table[half + figure] = '0' - 52;
        table[half + 11] = '+' - 62;
        table[half + 12] = '/' - 63;
        table[half + 13] = 'A';
    }
    return table;
}

constexpr NibbleTable kRowBits = MakeRowBits();
constexpr NibbleTable kBadRows = MakeBadRows();
constexpr NibbleTable kValueSteps = MakeValueSteps();
constexpr NibbleTable kDigitSteps = MakeDigitSteps();

MAILENGINE_AVX2 inline __m256i Load(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

// Bytes 0 to 15 and 12 to 27: 12 bytes for each half.
MAILENGINE_AVX2 inline __m256i LoadTwice12(const unsigned char* from) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 12));
    return _mm256_set_m128i(high, low);
}

MAILENGINE_AVX2 inline __m256i LookUp(const NibbleTable& table, __m256i at) {
    return _mm256_shuffle_epi8(Load(table.data()), at);
}

MAILENGINE_AVX2 inline __m256i RowsOf(__m256i text) {
    return _mm256_and_si256(_mm256_srli_epi32(text, 4), _mm256_set1_epi8(0x0F));
}

// A bit for each character that is no digit.
MAILENGINE_AVX2 inline std::uint32_t BadOf(__m256i text, __m256i rows) {
    const __m256i columns = _mm256_and_si256(text, _mm256_set1_epi8(0x0F));
    const __m256i bad = _mm256_and_si256(LookUp(kRowBits, rows), LookUp(kBadRows, columns));
    return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bad, _mm256_setzero_si256())));
}

// The 24 bytes of 32 digits.
MAILENGINE_AVX2 inline void StoreBytes(__m256i text, __m256i rows, unsigned char* to) {
    const __m256i slashes = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('/'));
    const __m256i values = _mm256_add_epi8(text, LookUp(kValueSteps, _mm256_add_epi8(rows, slashes)));
    const __m256i halves = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(halves, _mm256_set1_epi32(0x00011000));
    const __m256i bytes =
        _mm256_shuffle_epi8(groups, _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1, 2, 1, 0, 6,
                                                     5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    const __m256i packed = _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(packed));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 16), _mm256_extracti128_si256(packed, 1));
}

// Decodes the groups in front of the first bad character and takes that one too: a line end or a group of its own.
inline void DecodeUpTo(std::size_t bad, const char* text, unsigned char* to, Progress& done) {
    for (std::size_t group = 0; group < bad / 4; ++group) {
        Store(GroupOf(text + done.taken), to + done.made);
        done.taken += 4;
        done.made += 3;
    }
    const char* const from = text + done.taken;
    if (IsLineEnd(*from)) {
        done.taken += from[0] == '\r' && from[1] == '\n' ? 2 : 1;
    } else {
        done.made += DecodeOddGroup(from, 4, to + done.made);
        done.taken += 4;
    }
}

}  // namespace

bool HasVectorUnit() {
    return __builtin_cpu_supports("avx2");
}

MAILENGINE_AVX2 Progress DecodeVector(std::string_view text, unsigned char* to, std::size_t room) {
    Progress done;
    while (text.size() - done.taken >= 32 && room - done.made >= 24) {
        const __m256i characters = Load(text.data() + done.taken);
        const __m256i rows = RowsOf(characters);
        const std::uint32_t bad = BadOf(characters, rows);
        if (bad == 0) {
            StoreBytes(characters, rows, to + done.made);
            done.taken += 32;
            done.made += 24;
        } else {
            DecodeUpTo(static_cast<std::size_t>(std::countr_zero(bad)), text.data(), to, done);
        }
    }
    return done;
}

MAILENGINE_AVX2 std::size_t EncodeVector(const unsigned char* from, std::size_t size, char* to) {
    const __m256i order = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, 1, 0, 2, 1, 4, 3, 5, 4, 7,
                                           6, 8, 7, 10, 9, 11, 10);
    std::size_t taken = 0;
    for (; size - taken >= 28; taken += 24, to += 32) {
        const __m256i groups = _mm256_shuffle_epi8(LoadTwice12(from + taken), order);
        const __m256i even =
            _mm256_mulhi_epu16(_mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
        const __m256i odd =
            _mm256_mullo_epi16(_mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(even, odd);
        const __m256i capitals =
            _mm256_and_si256(_mm256_cmpgt_epi8(_mm256_set1_epi8(26), values), _mm256_set1_epi8(13));
        const __m256i kinds = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)), capitals);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm256_add_epi8(values, LookUp(kDigitSteps, kinds)));
    }
    return taken;
}

}  // namespace base64

#else

namespace base64 {

bool HasVectorUnit() {
    return false;
}

Progress DecodeVector(std::string_view, unsigned char*, std::size_t) {
    return {};
}

std::size_t EncodeVector(const unsigned char*, std::size_t, char*) {
    return 0;
}

}  // namespace base64

#endif
