// CharacterTable: carries what code page 932 lacks (emoji, accents, rare kanji) through the engine. Each such character
// of one message takes one of the 1,880 user-defined codes F040 to F9FC, which the engine passes as they are in text of
// the charset shift_jis; the table tells which stands for what. A message's own user-defined characters take places
// too. By value; one thread at a time.
#pragma once

#include <cstddef>
#include <hostkit/characters/Export.h>
#include <string>
#include <string_view>
#include <unordered_map>

namespace hostkit {

class HOSTKIT_API CharacterTable {
public:
    static constexpr std::size_t kPlaces = 1880;

    // The bytes that stand for a text in the dialect. A character that finds no place becomes 〓 and is counted, a NUL
    // and a byte that is not UTF-8 become U+FFFD.
    std::string ToDialect(std::string_view utf8);
    // The same for a value in which the engine takes the characters of structure for its own: these take places.
    std::string ToDialect(std::string_view utf8, std::string_view structure);

    // What a text that the engine read from the dialect was, as UTF-8; U+FFFD where the bytes stand for nothing.
    std::string ToUtf8(std::string_view read) const;

    // How many characters 〓 stands for.
    std::size_t Replaced() const { return m_replaced; }
    // How many places are taken.
    std::size_t Size() const { return m_characters.size(); }

private:
    void Append(std::string& text, char32_t character, std::string_view structure);
    void AppendPlace(std::string& text, char32_t character);

    std::u32string m_characters;  // by place
    std::unordered_map<char32_t, std::size_t> m_places;
    std::size_t m_replaced = 0;
};

}  // namespace hostkit
