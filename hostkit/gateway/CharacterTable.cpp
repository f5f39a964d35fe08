#include <algorithm>
#include <hostkit/gateway/CharacterTable.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr int kGeta = 0x81AC;  // 〓, what printers set for a character that they lack
constexpr std::size_t kTrails = 188;

int CodeOfPlace(std::size_t place) {
    const std::size_t trail = 0x40 + place % kTrails;
    return static_cast<int>((0xF0 + place / kTrails) << 8 | (trail < 0x7F ? trail : trail + 1));
}

constexpr char32_t kFirstUserDefined = 0xE000;  // what F040 is read as; the others follow in order

bool IsUserDefined(char32_t character) {
    return character >= kFirstUserDefined && character < kFirstUserDefined + CharacterTable::kPlaces;
}

std::size_t PlainRun(std::string_view text, std::size_t from) {
    const auto end = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                  [](char c) { return static_cast<unsigned char>(c) >= 0x80 || c == '\0'; });
    return static_cast<std::size_t>(end - text.begin()) - from;
}

}  // namespace

std::string CharacterTable::ToDialect(std::string_view utf8) {
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t plain = PlainRun(utf8, i);
        text.append(utf8, i, plain);
        i += plain;
        if (i == utf8.size()) break;
        const platform::Character character = platform::Utf8CharacterAt(utf8, i);
        Append(text, character.code, "");
        i += character.bytes;
    }
    return text;
}

std::string CharacterTable::ToDialect(std::string_view utf8, std::string_view structure) {
    std::string text;
    for (std::size_t i = 0; i < utf8.size();) {
        const platform::Character character = platform::Utf8CharacterAt(utf8, i);
        Append(text, character.code, structure);
        i += character.bytes;
    }
    return text;
}

void CharacterTable::Append(std::string& text, char32_t character, std::string_view structure) {
    if (character == 0 || character == platform::kNoCharacter) character = kReplacement;
    if (character < 0x80) {
        const char plain = static_cast<char>(character);
        if (structure.find(plain) != std::string_view::npos) return AppendPlace(text, character);
        text += plain;
        return;
    }
    const int code = IsUserDefined(character) ? -1 : platform::CodeOf(character);
    const bool isCharacter = code > 0xFF || (code >= 0xA1 && code <= 0xDF);  // 80, A0, FD to FF are codes of none
    if (!isCharacter) return AppendPlace(text, character);
    platform::AppendCode(text, code);
}

void CharacterTable::AppendPlace(std::string& text, char32_t character) {
    const auto [found, isNew] = m_places.try_emplace(character, m_characters.size());
    if (isNew && m_characters.size() == kPlaces) {
        m_places.erase(found);
        ++m_replaced;
        return platform::AppendCode(text, kGeta);
    }
    if (isNew) m_characters += character;
    platform::AppendCode(text, CodeOfPlace(found->second));
}

std::string CharacterTable::ToUtf8(std::string_view read) const {
    std::string utf8;
    utf8.reserve(read.size() + read.size() / 2);
    for (std::size_t i = 0; i < read.size();) {
        const platform::Character found = platform::CodePageCharacterAt(read, i);
        char32_t character = found.code == platform::kNoCharacter ? kReplacement : found.code;
        const std::size_t place = character - kFirstUserDefined;
        if (IsUserDefined(character) && place < m_characters.size()) character = m_characters[place];
        platform::AppendUtf8(utf8, character);
        i += found.bytes;
    }
    return utf8;
}

}  // namespace hostkit
