#include <algorithm>
#include <charconv>
#include <fstream>
#include <hostkit/files/MediaTypes.h>
#include <map>

namespace hostkit {
namespace {

constexpr const char* kTable = "/usr/share/mime/globs2";

struct Extension {
    int weight = -1;
    std::string text;
};

// Lines like "50:image/png:*.png". Of several extensions the heaviest counts, and of those the first.
using Table = std::map<std::string, Extension, std::less<>>;

// What several extensions of one weight leave open, as users expect it.
constexpr std::pair<std::string_view, std::string_view> kUsual[] = {
    {"image/jpeg", ".jpg"}, {"text/plain", ".txt"}, {"audio/mpeg", ".mp3"}, {"application/pgp-signature", ".asc"},
    {"image/tiff", ".tif"}, {"video/mpeg", ".mpg"}, {"text/html", ".html"}, {"application/octet-stream", ".bin"},
};

// Calls take with weight, type and extension (".png") of each line of the table.
template <class Take>
void ForEachLine(Take take) {
    std::ifstream file(kTable);
    for (std::string line; std::getline(file, line);) {
        const std::size_t first = line.find(':');
        const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos || line.compare(second + 1, 2, "*.") != 0) continue;
        int weight = 0;
        std::from_chars(line.data(), line.data() + first, weight);
        const std::string extension = line.substr(second + 3);
        if (extension.find_first_of("*?[.") != std::string::npos) continue;
        take(weight, line.substr(first + 1, second - first - 1), "." + extension);
    }
}

Table ReadTable() {
    Table table;
    for (const auto& [type, extension] : kUsual)
        table[std::string(type)] = {1000, std::string(extension)};
    ForEachLine([&](int weight, const std::string& type, const std::string& extension) {
        Extension& best = table[type];
        if (weight > best.weight) best = {weight, extension};
    });
    return table;
}

// The other way round: of several types the heaviest, and of those the first, which is how the table sorts them.
std::map<std::string, std::string> ReadTypes() {
    std::map<std::string, std::string> types;
    for (const auto& [type, extension] : kUsual)
        types.emplace(extension, type);
    ForEachLine([&](int, const std::string& type, const std::string& extension) { types.emplace(extension, type); });
    return types;
}

}  // namespace

std::string ExtensionForType(std::string_view type) {
    static const Table& table = *new Table(ReadTable());  // never freed: no destructor may run when a library goes
    const auto found = table.find(type);
    return found == table.end() ? "" : found->second.text;
}

std::string TypeForName(std::string_view name) {
    // Never freed, as the other.
    static const std::map<std::string, std::string>& types = *new std::map<std::string, std::string>(ReadTypes());
    std::string extension(name.substr(std::min(name.rfind('.'), name.size())));
    for (char& ch : extension)
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    const auto found = types.find(extension);
    return found == types.end() ? "application/octet-stream" : found->second;
}

}  // namespace hostkit
