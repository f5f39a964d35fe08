#include <algorithm>
#include <array>
#include <hostkit/gateway/DialectFields.h>
#include <hostkit/gateway/entities/Addresses.h>
#include <hostkit/gateway/text/Transfer.h>

namespace hostkit::gateway {
namespace {

constexpr std::string_view kBlank = " \t";
constexpr char kEscape = '\x1b';

// To the end whatever it finds, so that the compiler takes many bytes at once.
template <class Pred>
bool AreAll(std::string_view text, Pred isGood) {
    unsigned char others = 0;
    for (const char c : text)
        others |= static_cast<unsigned char>(!isGood(static_cast<unsigned char>(c)));
    return others == 0;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = g_ascii_tolower(c);
    return lower;
}

std::string_view Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) return "";
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

// What may stand on both sides of a fold, which the engine takes out without a trace.
using FoldRule = bool (*)(std::string_view left, std::string_view right);

bool IsBetweenWords(std::string_view left, std::string_view right) {
    return left.ends_with("?=") && right.starts_with("=?");
}
bool IsBetweenAddresses(std::string_view left, std::string_view right) {
    return left.empty() || left.ends_with(',') || right.starts_with('<') || IsBetweenWords(left, right);
}
bool IsBetweenIdentifiers(std::string_view left, std::string_view right) {
    return left.empty() || (left.ends_with('>') && right.starts_with('<'));
}
bool IsBetweenParameters(std::string_view left, std::string_view right) {
    return left.empty() || left.ends_with(';') || IsBetweenWords(left, right);
}

// The value as the engine unfolds it. false: it loses a blank that was meant.
bool UnfoldByRule(std::string_view raw, FoldRule rule, std::string& value) {
    raw = Trim(raw);
    value.clear();
    for (;;) {
        const std::size_t end = raw.find("\r\n");
        const std::string_view line = raw.substr(0, end);
        if (line.ends_with(' ') || line.ends_with('\t')) return false;
        value += line;
        if (end == std::string_view::npos) return true;
        raw.remove_prefix(end + 2);
        raw.remove_prefix(std::min(raw.find_first_not_of(kBlank), raw.size()));
        if (!rule(value, raw)) return false;
    }
}

bool IsCleanWordText(std::string_view encoding, std::string_view text, std::string_view forbidden) {
    std::string bytes;
    if (encoding == "B" || encoding == "b") {
        const std::size_t padded = text.find_last_not_of('=') + 1;
        const bool isWhole = text.size() % 4 == 0 && text.size() - padded <= 2;
        const bool isBase64 = std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(padded),
                                          [](char c) { return g_ascii_isalnum(c) || c == '+' || c == '/'; });
        if (!isWhole || !isBase64) return false;
        bytes = DecodeTransfer(text, GMIME_CONTENT_ENCODING_BASE64);
    } else {
        return false;  // quoted-printable in words has underscores, blanks and more that the engine does not know
    }
    if (bytes.find_first_of("\r\n\t") != std::string::npos || !IsCleanJis(bytes)) return false;
    bool isSingle = true;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == kEscape) {
            isSingle = bytes[i + 1] == '(';
            i += 2;
        } else if (isSingle && forbidden.find(bytes[i]) != std::string_view::npos) {
            return false;
        }
    }
    return true;
}

// Whether each "=?" of a value begins a word that the engine reads, and no blank that it would keep lies between two.
bool HasCleanWords(std::string_view value, std::string_view forbidden) {
    for (std::size_t at = value.find("=?"); at != std::string_view::npos; at = value.find("=?", at)) {
        const std::size_t charset = value.find('?', at + 2);
        const std::size_t encoding = charset == std::string_view::npos ? charset : value.find('?', charset + 1);
        const std::size_t end = encoding == std::string_view::npos ? encoding : value.find("?=", encoding + 1);
        if (end == std::string_view::npos || Lower(value.substr(at + 2, charset - at - 2)) != "iso-2022-jp")
            return false;
        if (!IsCleanWordText(value.substr(charset + 1, encoding - charset - 1),
                             value.substr(encoding + 1, end - encoding - 1), forbidden))
            return false;
        at = end + 2;
        const std::size_t next = value.find_first_not_of(kBlank, at);
        if (next != at && next != std::string_view::npos && value.substr(next).starts_with("=?")) return false;
    }
    return true;
}

bool IsCleanText(std::string_view raw, FoldRule rule) {
    std::string value;
    return UnfoldByRule(raw, rule, value) && HasCleanWords(value, "");
}

bool IsCleanAddress(std::string_view address) {
    return !address.empty() && address.find_first_of(" \t()<>,;:\"\\?") == std::string_view::npos;
}

// The offset of the closing quote of a quoted string, whose content begins at from; npos if there is none, or if it
// escapes anything but a quote.
std::size_t EndOfQuotes(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find_first_of("\"\\", from); at != std::string_view::npos;
         at = text.find_first_of("\"\\", at + 2)) {
        if (text[at] == '"') return at;
        if (text.substr(at, 2) != "\\\"") break;
    }
    return std::string_view::npos;
}

// One item of a list: address, name <address>, or "name" <address>.
bool IsCleanItem(std::string_view item) {
    const std::size_t open = item.find('<');
    if (open == std::string_view::npos) return IsCleanAddress(item);
    if (!item.ends_with('>') || !IsCleanAddress(item.substr(open + 1, item.size() - open - 2))) return false;
    std::string_view name = Trim(item.substr(0, open));
    if (name.starts_with('"')) {
        const bool isWhole = EndOfQuotes(name, 1) == name.size() - 1;
        return isWhole && name.find("=?") == std::string_view::npos &&
               name.find_first_of("<>") == std::string_view::npos;
    }
    return name.find_first_of("()<>;:\"\\,") == std::string_view::npos;
}

bool AreCleanAddresses(std::string_view raw) {
    std::string value;
    if (!UnfoldByRule(raw, &IsBetweenAddresses, value) || !HasCleanWords(value, ",\"<>\\;:()")) return false;
    std::string_view rest = value;
    for (std::size_t items = 0; items < kMaxAddresses; ++items) {
        std::size_t from = 0;
        if (Trim(rest).starts_with('"')) {
            from = EndOfQuotes(rest, rest.find('"') + 1);
            if (from == std::string_view::npos) return false;
        }
        const std::size_t comma = rest.find(',', from);
        if (!IsCleanItem(Trim(rest.substr(0, comma)))) return false;
        if (comma == std::string_view::npos) return true;
        rest.remove_prefix(comma + 1);
    }
    return false;
}

struct Rule {
    std::string_view name;
    bool (*isClean)(std::string_view raw);
};
constexpr std::array<Rule, 11> kRules = {{
    {"From", &AreCleanAddresses},
    {"To", &AreCleanAddresses},
    {"Cc", &AreCleanAddresses},
    {"Subject", [](std::string_view raw) { return IsCleanText(raw, &IsBetweenWords); }},
    {"Date", [](std::string_view raw) { return IsCleanText(raw, &IsBetweenWords); }},
    {"Message-ID", [](std::string_view raw) { return IsCleanText(raw, &IsBetweenIdentifiers); }},
    {"References", [](std::string_view raw) { return IsCleanText(raw, &IsBetweenIdentifiers); }},
    {"MIME-Version", [](std::string_view raw) { return Trim(raw) == "1.0"; }},
    {"Content-Type", [](std::string_view) { return true; }},
    {"Content-Transfer-Encoding", [](std::string_view) { return true; }},
    {"Content-Disposition", [](std::string_view) { return true; }},
}};

// Calls take with the name, in small letters, and the value of each parameter. false: the engine would split otherwise.
template <class Take>
bool ForEachParameter(std::string_view rest, Take take) {
    while (!Trim(rest).empty()) {
        rest = Trim(rest);
        const std::size_t equals = rest.find('=');
        if (equals == std::string_view::npos) return false;
        const std::string name = Lower(rest.substr(0, equals));
        if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-_") != std::string::npos) return false;
        rest.remove_prefix(equals + 1);
        std::string_view value;
        if (rest.starts_with('"')) {
            const std::size_t end = rest.find('"', 1);
            if (end == std::string_view::npos) return false;
            value = rest.substr(1, end - 1);
            rest.remove_prefix(end + 1);
            if (value.find_first_of(";\\") != std::string_view::npos) return false;
        } else {
            const std::size_t end = std::min(rest.find(';'), rest.size());
            value = Trim(rest.substr(0, end));
            rest.remove_prefix(end);
            if (value.find_first_of(" \t\"()\\") != std::string_view::npos) return false;
        }
        if (!take(name, value)) return false;
        rest = Trim(rest);
        if (!rest.empty() && !rest.starts_with(';')) return false;
        rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
    }
    return true;
}

bool SplitField(const Field& field, std::string& value, std::string& kind, std::string_view& parameters) {
    if (!UnfoldByRule(field.raw, &IsBetweenParameters, value) || !HasCleanWords(value, ";\"\\")) return false;
    const std::size_t end = std::min(value.find(';'), value.size());
    kind = Lower(Trim(std::string_view(value).substr(0, end)));
    parameters = std::string_view(value).substr(std::min(end + 1, value.size()));
    return kind.find_first_of(" \t(\"=") == std::string::npos;
}

bool ReadType(const Field& field, DialectContent& content) {
    std::string value;
    std::string_view parameters;
    if (!SplitField(field, value, content.type, parameters)) return false;
    bool isPlain = true;
    const bool isSplit = ForEachParameter(parameters, [&](const std::string& name, std::string_view parameter) {
        if (name == "format" || name == "delsp" || name == "type" || name == "start") isPlain = false;
        std::string* const target = name == "charset"    ? &content.charset
                                    : name == "boundary" ? &content.boundary
                                    : name == "name"     ? &content.name
                                                         : nullptr;
        if (target == nullptr) return true;
        const bool isFirst = target->empty() && !parameter.empty();
        *target = parameter;
        return isFirst;
    });
    content.charset = Lower(content.charset);
    return isSplit && isPlain;
}

bool ReadDisposition(const Field& field, DialectContent& content) {
    std::string value;
    std::string kind;
    std::string_view parameters;
    if (!SplitField(field, value, kind, parameters)) return false;
    content.isAttachment = kind == "attachment";
    return ForEachParameter(parameters, [&](const std::string& name, std::string_view parameter) {
        if (name == "filename" && parameter != content.name) content.isNamedOtherwise = true;
        return true;
    });
}

}  // namespace

bool IsCleanAscii(std::string_view bytes) {
    return AreAll(bytes, [](unsigned char c) { return (c < 0x80) & (c != 0) & (c != kEscape); });
}

bool IsCleanJis(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t escape = std::min(bytes.find(kEscape), bytes.size());
        if (!IsCleanAscii(bytes.substr(0, escape))) return false;
        bytes.remove_prefix(escape);
        if (bytes.empty()) break;
        const std::string_view sequence = bytes.substr(0, 3);
        bytes.remove_prefix(sequence.size());
        if (IsOneOf(sequence, {"\x1b(B", "\x1b(J"})) continue;
        if (!IsOneOf(sequence, {"\x1b$B", "\x1b$@"})) return false;
        const std::size_t end = bytes.find(kEscape);
        const std::string_view run = bytes.substr(0, end);
        const bool arePairs = end != std::string_view::npos && run.size() % 2 == 0 &&
                              AreAll(run, [](unsigned char c) { return (c >= 0x21) & (c <= 0x7E); });
        if (!arePairs) return false;
        bytes.remove_prefix(end);
    }
    return true;
}

bool IsStrictBlock(std::string_view block, const Header& header, std::size_t bodyTop) {
    const char* at = block.data();
    for (const Field& field : header.fields) {
        if (field.name.data() != at || field.raw.data() != field.name.data() + field.name.size() + 1) return false;
        at = field.raw.data() + field.raw.size() + 2;
    }
    const auto fieldBytes = static_cast<std::size_t>(at - block.data());
    if (header.fields.empty() || bodyTop != fieldBytes + 2 || block.substr(fieldBytes, 2) != "\r\n") return false;
    const std::string_view lines = block.substr(0, fieldBytes);
    return AreAll(lines,
                  [](unsigned char c) { return ((c >= ' ') & (c < 0x7F)) | (c == '\r') | (c == '\n') | (c == '\t'); });
}

bool AreCleanFields(const Header& header) {
    std::array<int, kRules.size()> seen{};
    for (const Field& field : header.fields) {
        for (std::size_t i = 0; i < kRules.size(); ++i) {
            if (!EqualNames(field.name, kRules[i].name)) continue;
            if (++seen[i] > 1 || !kRules[i].isClean(field.raw)) return false;
        }
    }
    return true;
}

bool ReadDialectContent(const Header& header, DialectContent& content) {
    const Field* const version = header.Find("MIME-Version");
    const Field* const type = header.Find("Content-Type");
    const Field* const encoding = header.Find("Content-Transfer-Encoding");
    const Field* const disposition = header.Find("Content-Disposition");
    if (version > type && type != nullptr) return false;
    if (encoding != nullptr && (encoding < type || encoding < version)) return false;
    if (type != nullptr && !ReadType(*type, content)) return false;
    if (disposition != nullptr && !ReadDisposition(*disposition, content)) return false;
    if (encoding != nullptr) content.encoding = Lower(Trim(encoding->raw));
    return IsOneOf(content.encoding, {"7bit", "8bit", "binary", "base64", "quoted-printable"});
}

}  // namespace hostkit::gateway
