#include <charconv>
#include <map>
#include <string>

#include <mailengine/parser/Scanning.h>
#include <mailengine/parser/TransferDecoder.h>
#include <mailengine/parser/Values.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

constexpr std::string_view kJapanesePrefix = "iso-2022-jp''";  // RFC 2231 4: charset, no language

// Calls visit with each parameter, name and value up to its ";", until that gives true.
template <class Visit>
void VisitParameters(std::string_view parameters, Visit visit) {
    for (std::string_view rest = Trim(parameters);; rest = TrimLeft(rest)) {
        const int semicolon = Find(rest, ";", 0);
        if (visit(semicolon == -1 ? rest : Mid(rest, 0, semicolon)) || semicolon == -1) return;
        rest.remove_prefix(static_cast<std::size_t>(semicolon) + 1);
    }
}

CString ParameterValue(std::string_view value) {
    value = Trim(value);
    if (value.starts_with('"')) value.remove_prefix(1);
    if (value.ends_with('"')) value.remove_suffix(1);
    return DecodeFieldValue(value);
}

// Splits "7*=value", the rest of a numbered piece, into number and value. -1: it is no such thing.
int SplitPiece(std::string_view rest, std::string_view& value) {
    int number = -1;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    const auto digits = static_cast<std::size_t>(end - rest.data());
    const bool isPlain = error == std::errc() && number >= 0 && rest[0] != '-' && (digits == 1 || rest[0] != '0');
    if (!isPlain || !rest.substr(digits).starts_with("*=")) return -1;
    value = rest.substr(digits + 2);
    return number;
}

// Joins numbered pieces, of which the first of each number counts, up to the first number that is missing or empty.
// Pieces are kept only as long as one before them is awaited.
class CNumberedPieces {
public:
    void Take(int number, std::string_view value) {
        if (number > m_nExpected)
            m_early.emplace(number, value);
        else if (number == m_nExpected)
            Join(value);
    }
    bool HasEnded() const { return m_bEnded; }
    const CString& Joined() const { return m_strJoined; }

private:
    void Join(std::string_view value) {
        for (;;) {
            const CString piece = ParameterValue(value);
            m_bEnded = piece.IsEmpty();
            if (m_bEnded) return;
            m_strJoined += piece;
            const auto next = m_early.find(++m_nExpected);
            if (next == m_early.end()) return;
            value = next->second;
            m_early.erase(next);
        }
    }

    CString m_strJoined;
    int m_nExpected = 0;
    bool m_bEnded = false;
    std::map<int, std::string_view> m_early;
};

CString DecodeEncodedWord(std::string_view charset, std::string_view encoding, std::string_view text) {
    CString word;
    // What a refused word wrote before counts, but a refusal comes before the first byte.
    (void)DecodeText(text, encoding, charset, word);
    return word;
}

// Offset of the double quote that ends the quoted string at the top of text, -1 if none. The byte in front of a quote
// decides: one that is the second byte of a character (表 ends in 0x5C) hides the quote as a backslash does.
int FindClosingQuote(std::string_view text) {
    int quote = Find(text, "\"", 1);
    while (quote != -1 && text[static_cast<std::size_t>(quote) - 1] == '\\')
        quote = Find(text, "\"", quote + 1);
    return quote;
}

}  // namespace

CString DecodeFieldValue(std::string_view value) {
    int top = Find(value, "=?", 0);
    if (top == -1) return CString(value);
    CString result;
    int done = 0;
    for (; top != -1; top = Find(value, "=?", done)) {
        result += Mid(value, done, top - done);
        const int charset = top + 2;
        const int charsetEnd = Find(value, "?", charset);
        const int encodingEnd = charsetEnd == -1 ? -1 : Find(value, "?", charsetEnd + 1);
        const int textEnd = encodingEnd == -1 ? -1 : Find(value, "?=", encodingEnd + 1);
        if (textEnd == -1) {
            result += Mid(value, charset);
            return result;
        }
        result += DecodeEncodedWord(Mid(value, charset, charsetEnd - charset),
                                    Mid(value, charsetEnd + 1, encodingEnd - charsetEnd - 1),
                                    Mid(value, encodingEnd + 1, textEnd - encodingEnd - 1));
        done = textEnd + 2;
    }
    result += Mid(value, done);
    return result;
}

ContentType SplitContentType(std::string_view value) {
    ContentType result;
    const int semicolon = Find(value, ";", 0);
    if (semicolon == -1) {
        result.type = CString(value);
        if (!IsType(result.type, wire::kTextPlain)) result.parameters.Empty();
        return result;
    }
    result.type = CString(TrimRight(Mid(value, 0, semicolon)));
    result.parameters = CString(TrimLeft(Mid(value, semicolon + 1)));
    return result;
}

bool IsType(const CString& type, std::string_view name) {
    return platform::EqualIgnoringCase(type.View(), name);
}

CString GetParameter(std::string_view parameters, std::string_view name) {
    const std::string key = std::string(name) + "=";
    CString result;
    VisitParameters(parameters, [&](std::string_view parameter) {
        if (!StandsAtIgnoringCase(parameter, 0, key)) return false;
        result = ParameterValue(parameter.substr(key.size()));
        return true;
    });
    return result;
}

CString GetNumberedParameter(std::string_view parameters, std::string_view name) {
    const std::string key = std::string(name) + "*";
    CNumberedPieces pieces;
    VisitParameters(parameters, [&](std::string_view parameter) {
        std::string_view value;
        const bool isOurs = StandsAtIgnoringCase(parameter, 0, key);
        const int number = isOurs ? SplitPiece(parameter.substr(key.size()), value) : -1;
        if (number >= 0) pieces.Take(number, value);
        return pieces.HasEnded();
    });
    const CString& joined = pieces.Joined();
    if (!StandsAtIgnoringCase(joined.View(), 0, kJapanesePrefix)) return joined;
    CString decoded;
    (void)DecodeText(joined.View().substr(kJapanesePrefix.size()), "H", wire::kIso2022Jp, decoded);
    return decoded;
}

CString GetFileName(std::string_view parameters) {
    CString name = GetParameter(parameters, "name");
    if (name.IsEmpty()) name = GetNumberedParameter(parameters, "name");
    return name;
}

int NextAddress(std::string_view list, int start, std::string_view& item) {
    const std::string_view rest = TrimLeft(Mid(list, start));
    if (rest.empty()) return -1;
    const int closing = rest.starts_with('"') ? FindClosingQuote(rest) : -1;
    const int comma = Find(rest, ",", closing == -1 ? 0 : closing + 1);
    item = comma == -1 ? rest : Mid(rest, 0, comma);
    return comma == -1 ? LengthOf(list) : LengthOf(list) - LengthOf(rest) + comma + 1;
}

void AppendAddresses(CString value, CStringArray& list) {
    value += ',';
    std::string_view item;
    for (int at = 0; (at = NextAddress(value.View(), at, item)) != -1;)
        list.SetAtGrow(list.GetSize(), CString(Trim(item)));
}

}  // namespace parser
