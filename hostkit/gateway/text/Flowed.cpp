#include <algorithm>
#include <hostkit/gateway/text/Flowed.h>

namespace hostkit::gateway {
namespace {

constexpr std::string_view kSignature = "-- ";

struct Line {
    std::size_t depth;
    std::string_view text;
    bool flows;
};

Line Read(std::string_view line) {
    const std::size_t depth = std::min(line.find_first_not_of('>'), line.size());
    line.remove_prefix(depth);
    if (line.starts_with(' ')) line.remove_prefix(1);  // it was put there to protect the line
    return {depth, line, line.ends_with(' ') && line != kSignature};
}

}  // namespace

std::string Unflow(std::string_view text, bool isDelSp) {
    std::string whole;
    whole.reserve(text.size());
    bool isOpen = false;  // the line before flows into this one
    std::size_t depth = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string_view bytes = text.substr(at, end - at);
        if (bytes.ends_with('\r')) bytes.remove_suffix(1);
        at = end + 1;
        const Line line = Read(bytes);
        const bool joins = isOpen && line.depth == depth && line.text != kSignature;
        if (isOpen && !joins) whole += '\n';
        if (!joins && line.depth > 0) whole.append(line.depth, '>').append(1, ' ');
        whole += line.text;
        if (line.flows && isDelSp) whole.pop_back();
        isOpen = line.flows;
        depth = line.depth;
        if (!isOpen) whole += '\n';
    }
    if (isOpen) whole += '\n';
    return whole;
}

}  // namespace hostkit::gateway
