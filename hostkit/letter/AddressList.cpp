#include <algorithm>
#include <hostkit/letter/AddressList.h>
#include <iterator>

namespace hostkit {

namespace {

constexpr std::string_view kSeparators[] = {",", ";", "\r", "\n", "，", "；", "、"};
constexpr std::string_view kBlanks[] = {" ", "\t", "\u3000"};

// The bytes of the separator that text begins with, 0 if it does not.
std::size_t SeparatorAt(std::string_view text) {
    const auto found = std::find_if(std::begin(kSeparators), std::end(kSeparators),
                                    [&](std::string_view separator) { return text.starts_with(separator); });
    return found == std::end(kSeparators) ? 0 : found->size();
}

// The offset behind the quoted string or the brackets that begin at at; that character alone where they have no end.
std::size_t BehindEnclosed(std::string_view line, std::size_t at) {
    const char end = line[at] == '"' ? '"' : '>';
    for (std::size_t i = at + 1; i < line.size(); ++i) {
        if (line[i] == end) return i + 1;
        if (line[i] == '\\' && end == '"') ++i;
    }
    return at + 1;
}

void Add(std::vector<std::string>& addresses, std::string_view text) {
    for (bool trims = true; trims;) {
        trims = false;
        for (const std::string_view blank : kBlanks) {
            if (text.starts_with(blank)) text.remove_prefix(blank.size()), trims = true;
            if (text.ends_with(blank)) text.remove_suffix(blank.size()), trims = true;
        }
    }
    if (!text.empty()) addresses.emplace_back(text);
}

}  // namespace

std::vector<std::string> AddressesIn(std::string_view line) {
    std::vector<std::string> addresses;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < line.size();) {
        if (const std::size_t bytes = SeparatorAt(line.substr(at)); bytes != 0) {
            Add(addresses, line.substr(begin, at - begin));
            begin = at += bytes;
        } else {
            at = line[at] == '"' || line[at] == '<' ? BehindEnclosed(line, at) : at + 1;
        }
    }
    Add(addresses, line.substr(begin));
    return addresses;
}

std::string LineOf(const std::vector<std::string>& addresses) {
    std::string line;
    for (const std::string& address : addresses)
        line.append(line.empty() ? "" : ", ").append(address);
    return line;
}

}  // namespace hostkit
