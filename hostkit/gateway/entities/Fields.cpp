#include <algorithm>
#include <hostkit/gateway/entities/Fields.h>

#include <mailengine/support/platform/text/Characters.h>

namespace hostkit::gateway {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kFromLine = "From ";  // what an mbox puts on top of each of its messages

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line;
}

// The line at from, without its end.
std::string_view LineAt(std::string_view text, std::size_t from, std::size_t& next) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    next = std::min(end + 1, text.size());
    std::string_view line = text.substr(from, end - from);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

// The length of the name of a field line, 0 if the line is none; colon takes where its colon stands.
std::size_t NameBytes(std::string_view line, std::size_t& colon) {
    if (line.starts_with("--")) return 0;  // rather a delimiter
    const auto isName = [](char c) { return c > ' ' && c < 0x7F && c != ':'; };
    const auto end = std::find_if_not(line.begin(), line.end(), isName);
    const auto length = static_cast<std::size_t>(end - line.begin());
    colon = std::min(line.find_first_not_of(" \t", length), line.size());
    return colon < line.size() && line[colon] == ':' ? length : 0;
}

bool LooksLikeHeader(std::string_view line) {
    constexpr std::string_view kUsual[] = {"From",        "To",           "Subject",    "Date",        "Received",
                                           "Return-Path", "MIME-Version", "Message-ID", "Content-Type"};
    std::size_t colon = 0;
    const std::string_view name = line.substr(0, NameBytes(line, colon));
    return std::any_of(std::begin(kUsual), std::end(kUsual), [&](auto usual) { return EqualNames(name, usual); });
}

}  // namespace

bool EqualNames(std::string_view a, std::string_view b) {
    return a.size() == b.size() && platform::EqualIgnoringCase(a, b);
}

const Field* Header::Find(std::string_view name) const {
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const Field& field) { return EqualNames(field.name, name); });
    return found == fields.end() ? nullptr : &*found;
}

std::size_t TopOfMessage(std::string_view text) {
    std::size_t top = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    const std::size_t first = text.find_first_not_of("\r\n", top);
    std::size_t next = 0;
    if (first != std::string_view::npos && LooksLikeHeader(LineAt(text, first, next))) top = first;
    if (text.substr(top).starts_with(kFromLine)) LineAt(text, top, top);
    return top;
}

Header ReadHeader(std::string_view text, std::size_t& bodyTop) {
    Header header;
    std::size_t at = 0;
    for (std::size_t next = 0; at < text.size(); at = next) {
        const std::string_view line = LineAt(text, at, next);
        if (line.empty()) {
            at = next;
            break;
        }
        std::size_t colon = 0;
        if (IsBlank(line[0]) && !header.fields.empty()) {
            std::string_view& raw = header.fields.back().raw;
            raw = std::string_view(raw.data(), static_cast<std::size_t>(line.data() + line.size() - raw.data()));
        } else if (const std::size_t name = NameBytes(line, colon); name != 0) {
            header.fields.push_back({line.substr(0, name), line.substr(colon + 1)});
        } else if (IsBlank(line[0]) && LooksLikeHeader(Trimmed(line))) {  // somebody indented the first field
            const std::string_view field = Trimmed(line);
            const std::size_t bytes = NameBytes(field, colon);
            header.fields.push_back({field.substr(0, bytes), field.substr(colon + 1)});
        } else if (!line.starts_with(kFromLine) && !line.starts_with(">From ") && line[0] != ':') {
            break;
        }
    }
    bodyTop = at;
    return header;
}

std::string Unfold(std::string_view raw) {
    std::string value;
    value.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size();) {
        if (raw[i] == '\r' || raw[i] == '\n') {
            i = std::min(raw.find_first_not_of("\r\n \t", i), raw.size());
            while (!value.empty() && IsBlank(value.back()))
                value.pop_back();
            value += ' ';
        } else {
            value += raw[i++];
        }
    }
    const std::size_t first = value.find_first_not_of(" \t");
    if (first == std::string::npos) return "";
    return value.substr(first, value.find_last_not_of(" \t") - first + 1);
}

}  // namespace hostkit::gateway
