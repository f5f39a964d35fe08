#include <cerrno>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr int kGeta = 0x81AC;  // 〓, what printers set for a character that they lack

// What another system types for a character of code page 932.
struct Cousin {
    char32_t typed;
    int code;
};
constexpr Cousin kCousins[] = {
    {0x00A0, 0x0020}, {0x00A2, 0x8191}, {0x00A3, 0x8192}, {0x00A5, 0x818F}, {0x00A6, 0xEEFA}, {0x00AC, 0x81CA},
    {0x00B7, 0x8145}, {0x2014, 0x815C}, {0x2016, 0x8161}, {0x203E, 0x8150}, {0x2212, 0x817C}, {0x301C, 0x8160},
};

// The code of a character that is no control, -1 if a mail cannot carry it.
int CodeFor(char32_t character) {
    const int code = platform::CarriedCodeOf(character);
    if (code != -1) return code;
    for (const Cousin& cousin : kCousins)
        if (cousin.typed == character) return cousin.code;
    return -1;
}

void CheckTables() {
    const int error = platform::CodePageError();
    if (error == 0) return;
    throw Failure(FailureKind::System, {},
                  error == EINVAL ? Words("libc gives no conversion for code page 932; install its gconv modules")
                                  : Words("libc gives no conversion for code page 932: {1}", SystemWords(error)));
}

// Sets line and column of the character at offset. The text before it is UTF-8.
Place PlaceOf(std::string_view text, std::size_t offset, Place where) {
    where.line = 1;
    where.column = 1;
    for (std::size_t i = 0; i < offset; i += platform::Utf8CharacterAt(text, i).bytes) {
        const bool ends = text[i] == '\n' ? i == 0 || text[i - 1] != '\r' : text[i] == '\r';
        if (ends) {
            ++where.line;
            where.column = 1;
        } else if (text[i] != '\n') {
            ++where.column;
        }
    }
    return where;
}

bool IsControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}
bool MayStandInLetter(char32_t control) {
    return control == '\r' || control == '\n' || control == '\t';
}

// UTF-8 on its way in: one text, one call of Convert.
class Entry {
public:
    Entry(std::string_view text, Extent extent, Missing missing, const Place& where)
        : m_strText(text), m_extent(extent), m_missing(missing), m_where(where) {}
    std::string Convert();

private:
    void Take(const platform::Character& character);
    void TakeLineEnd();
    [[noreturn]] void Refuse(FailureKind kind, const std::string& fact) const;
    [[noreturn]] void RefuseByte() const;
    [[noreturn]] void RefuseControl(char32_t control) const;
    [[noreturn]] void RefuseCharacter(char32_t character) const;

    std::string_view m_strText;
    Extent m_extent;
    Missing m_missing;
    const Place& m_where;
    std::size_t m_nOffset = 0;
    std::string m_strInside;
};

std::string Entry::Convert() {
    m_strInside.reserve(m_strText.size());
    while (m_nOffset < m_strText.size()) {
        const platform::Character character = platform::Utf8CharacterAt(m_strText, m_nOffset);
        if (character.code == platform::kNoCharacter) RefuseByte();
        Take(character);
        m_nOffset += character.bytes;
    }
    return std::move(m_strInside);
}

void Entry::Take(const platform::Character& character) {
    if (IsControl(character.code)) {
        if (m_extent == Extent::Line || !MayStandInLetter(character.code)) RefuseControl(character.code);
        if (character.code != '\t') return TakeLineEnd();
    }
    const int code = CodeFor(character.code);
    if (code == -1 && m_missing == Missing::Refuse) RefuseCharacter(character.code);
    platform::AppendCode(m_strInside, code == -1 ? kGeta : code);
}

// At a CR or an LF: the LF of a CRLF was told with its CR.
void Entry::TakeLineEnd() {
    if (m_strText[m_nOffset] == '\n' && m_nOffset > 0 && m_strText[m_nOffset - 1] == '\r') return;
    m_strInside += "\r\n";
}

void Entry::Refuse(FailureKind kind, const std::string& fact) const {
    throw Failure(kind, PlaceOf(m_strText, m_nOffset, m_where), fact);
}

void Entry::RefuseByte() const {
    const std::string byte = Shown(m_strText.substr(m_nOffset, 1)).substr(2);
    Refuse(
        FailureKind::Value,
        Words("the byte 0x{1} is not UTF-8; convert the text to UTF-8 first (iconv -f SHIFT_JIS, for example)", byte));
}

void Entry::RefuseControl(char32_t control) const {
    const bool breaks = m_extent == Extent::Line && (control == '\r' || control == '\n');
    Refuse(FailureKind::Value,
           breaks ? Words("a line ends here; give one line")
                  : Words("the control character {1} cannot stand here; take it out", platform::NameOf(control)));
}

void Entry::RefuseCharacter(char32_t character) const {
    std::string sign;
    platform::AppendUtf8(sign, character);
    Refuse(FailureKind::Uncarried,
           Words("{1} ({2}) has no code in a Japanese mail", sign, platform::NameOf(character)));
}

}  // namespace

CString ToCodePage(std::string_view utf8, Extent extent, Missing missing, const Place& where) {
    CheckTables();
    if (utf8.size() > kMaxTextBytes)
        throw Failure(FailureKind::Value, where, Words("the text is larger than 256 MiB; send it as an attachment"));
    return CString(Entry(utf8, extent, missing, where).Convert());
}

std::vector<Place> UncarriedIn(std::string_view utf8) {
    std::vector<Place> places;
    Place place{.line = 1, .column = 1};
    for (std::size_t i = 0; i < utf8.size();) {
        const platform::Character character = platform::Utf8CharacterAt(utf8, i);
        const bool isText =
            character.code != platform::kNoCharacter &&
            (IsControl(character.code) ? MayStandInLetter(character.code) : CodeFor(character.code) != -1);
        if (!isText) places.push_back(place);
        const bool isCrOfPair = character.code == '\r' && utf8.substr(i + 1).starts_with('\n');
        if ((character.code == '\r' && !isCrOfPair) || character.code == '\n')
            place = {.line = place.line + 1, .column = 1};
        else if (!isCrOfPair)
            ++place.column;
        i += character.bytes;
    }
    return places;
}

std::string FromCodePage(std::string_view text) {
    CheckTables();
    std::string utf8;
    utf8.reserve(text.size() + text.size() / 2);
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::CodePageCharacterAt(text, i);
        platform::AppendUtf8(utf8, character.code == platform::kNoCharacter ? kReplacement : character.code);
        i += character.bytes;
    }
    return utf8;
}

CString ToCarriedCodes(std::string_view text, const Place& where) {
    CheckTables();
    std::string carried;
    for (std::size_t i = 0; i < text.size();) {
        const platform::Character character = platform::CodePageCharacterAt(text, i);
        const int code = CodeFor(character.code);
        if (code == -1) {
            const char32_t named = character.code == platform::kNoCharacter ? kReplacement : character.code;
            throw Failure(FailureKind::Uncarried, where,
                          Words("the character {1} has no code in a Japanese mail", platform::NameOf(named)));
        }
        platform::AppendCode(carried, code);
        i += character.bytes;
    }
    return CString(std::move(carried));
}

}  // namespace hostkit
