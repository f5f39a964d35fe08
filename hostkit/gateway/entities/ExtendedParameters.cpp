#include <glib.h>
#include <hostkit/gateway/entities/ExtendedParameters.h>
#include <hostkit/gateway/text/Charsets.h>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit::gateway {
namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = g_ascii_tolower(c);
    return lower;
}

// Where the parameter at from ends: at a semicolon outside quotes, or with the field.
std::size_t EndOfParameter(std::string_view field, std::size_t from) {
    bool isQuoted = false;
    for (std::size_t i = from; i < field.size(); ++i) {
        if (field[i] == '\\' && isQuoted)
            ++i;
        else if (field[i] == '"')
            isQuoted = !isQuoted;
        else if (field[i] == ';' && !isQuoted)
            return i;
    }
    return field.size();
}

// Each escaped byte above 7F as the escapes of the character of that number.
std::string Widened(std::string_view value) {
    std::string wide;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool isEscape = value[i] == '%' && i + 2 < value.size() && g_ascii_isxdigit(value[i + 1]) &&
                              g_ascii_xdigit_value(value[i + 1]) >= 8 && g_ascii_isxdigit(value[i + 2]);
        if (!isEscape) {
            wide += value[i];
            continue;
        }
        wide += g_ascii_xdigit_value(value[i + 1]) < 0xC ? "%C2%" : "%C3%";
        wide += "89AB89AB"[g_ascii_xdigit_value(value[i + 1]) - 8];
        wide += value[i + 2];
        i += 2;
    }
    return wide;
}

}  // namespace

std::string ExtendedParameters::Prepare(std::string_view field) {
    if (field.find('*') == std::string_view::npos) return std::string(field);
    std::string prepared;
    for (std::size_t at = 0; at <= field.size();) {
        const std::size_t end = EndOfParameter(field, at);
        prepared += PreparePiece(field.substr(at, end - at));
        if (end < field.size()) prepared += ';';
        at = end + 1;
    }
    return prepared;
}

std::string ExtendedParameters::PreparePiece(std::string_view piece) {
    const std::size_t top = std::min(piece.find_first_not_of(" \t"), piece.size());
    const std::size_t equals = piece.find('=');
    const std::size_t star = piece.find('*');
    if (equals == std::string_view::npos || star > equals || piece[equals - 1] != '*') return std::string(piece);
    const std::string name = Lower(piece.substr(top, star - top));
    const std::string_view number = piece.substr(star, equals - star);
    std::string_view value = piece.substr(equals + 1);
    std::string prepared(piece.substr(0, equals + 1));
    const std::size_t charset = value.find('\'');
    const std::size_t language = charset == std::string_view::npos ? charset : value.find('\'', charset + 1);
    if ((number == "*" || number == "*0*") && language != std::string_view::npos) {
        const std::string declared = Lower(value.substr(value.starts_with('"') ? 1 : 0, charset));
        if (declared.empty() || declared == "utf-8") return std::string(piece);
        m_charsets[name] = declared.substr(0, declared.find('\''));
        prepared.append(value.starts_with('"') ? "\"" : "").append("utf-8''");
        value.remove_prefix(language + 1);
    }
    return prepared + (m_charsets.count(name) != 0 ? Widened(value) : std::string(value));
}

std::string ExtendedParameters::Value(const std::string& name, const std::string& value) const {
    const auto charset = m_charsets.find(name);
    if (charset == m_charsets.end()) return value;
    std::string bytes;
    for (std::size_t i = 0; i < value.size();) {
        const platform::Character character = platform::Utf8CharacterAt(value, i);
        if (character.code > 0xFF) return value;
        bytes += static_cast<char>(character.code);
        i += character.bytes;
    }
    std::size_t ignored = 0;
    return TextToUtf8(bytes, charset->second, ignored);
}

}  // namespace hostkit::gateway
