#include <algorithm>
#include <glib.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/MailtoUrl.h>
#include <hostkit/letter/answer/Identifiers.h>
#include <memory>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {

namespace {

constexpr std::string_view kScheme = "mailto:";

bool IsName(std::string_view text, std::string_view name) {
    return text.size() == name.size() && g_ascii_strncasecmp(text.data(), name.data(), name.size()) == 0;
}

std::string Unescaped(std::string_view coded) {
    const std::unique_ptr<GBytes, decltype(&g_bytes_unref)> plain(
        g_uri_unescape_bytes(coded.data(), static_cast<gssize>(coded.size()), nullptr, nullptr), &g_bytes_unref);
    if (!plain) return std::string(coded);
    gsize size = 0;
    const auto* const bytes = static_cast<const char*>(g_bytes_get_data(plain.get(), &size));
    return size == 0 ? "" : std::string(bytes, size);
}

// What is seen of the decoded value, and the line ends and TABs of a letter, which are blanks in a line.
std::string Seen(std::string_view coded, Extent extent) {
    const std::string value = Unescaped(coded);
    std::string seen;
    for (std::size_t at = 0; at < value.size();) {
        const platform::Character character = platform::Utf8CharacterAt(value, at);
        const std::string_view bytes = std::string_view(value).substr(at, character.bytes);
        at += character.bytes;
        const bool isLayout = bytes == "\r" || bytes == "\n" || bytes == "\t";
        if (isLayout && extent == Extent::Line)
            seen += ' ';
        else if (isLayout || (character.code != platform::kNoCharacter && !IsUnseen(character.code)))
            seen += bytes;
    }
    return seen;
}

// The list is split while it is coded: a comma inside an address is a %2C (RFC 6068 2).
void AppendAddresses(std::string_view coded, std::vector<std::string>& addresses) {
    for (std::size_t comma = 0; comma != std::string_view::npos;) {
        comma = coded.find(',');
        std::string address = Seen(coded.substr(0, comma), Extent::Line);
        if (address.find_first_not_of(' ') != std::string::npos) addresses.push_back(std::move(address));
        if (comma != std::string_view::npos) coded.remove_prefix(comma + 1);
    }
}

void Take(std::string_view field, Letter& letter) {
    const std::size_t equals = std::min(field.find('='), field.size());
    const std::string_view name = field.substr(0, equals);
    const std::string_view value = field.substr(std::min(equals + 1, field.size()));
    if (IsName(name, "to")) AppendAddresses(value, letter.to);
    if (IsName(name, "cc")) AppendAddresses(value, letter.cc);
    if (IsName(name, "bcc")) AppendAddresses(value, letter.bcc);
    if (IsName(name, "subject") && !letter.subject) letter.subject = Seen(value, Extent::Line);
    if (IsName(name, "body") && !letter.body) letter.body = Seen(value, Extent::Letter);
    if (IsName(name, "in-reply-to") && !letter.inReplyTo) letter.inReplyTo = PlainBytes(Seen(value, Extent::Line));
}

}  // namespace

Letter LetterOfMailto(std::string_view url) {
    if (!IsName(url.substr(0, kScheme.size()), kScheme))
        throw Failure(FailureKind::Value, {Field::None, "'" + Shown(url) + "'"}, Words("does not begin with mailto:"));
    url.remove_prefix(kScheme.size());
    const std::size_t fields = std::min(url.find('?'), url.size());
    Letter letter;
    AppendAddresses(url.substr(0, fields), letter.to);
    for (std::size_t end = fields; end < url.size();) {
        const std::size_t begin = end + 1;
        end = std::min(url.find('&', begin), url.size());
        Take(url.substr(begin, end - begin), letter);
    }
    return letter;
}

}  // namespace hostkit
