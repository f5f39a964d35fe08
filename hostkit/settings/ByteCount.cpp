#include <charconv>
#include <hostkit/characters/Words.h>
#include <hostkit/settings/ByteCount.h>
#include <limits>

namespace hostkit {

namespace {

constexpr std::string_view kUnits = "KkMmGg";  // two letters for each step

}  // namespace

std::uint64_t BytesIn(std::string_view text, Field field) {
    const auto refuse = [&] {
        throw Failure(FailureKind::Value, {field, "'" + std::string(text) + "'"},
                      Words("give a size, as 500K, 25M or 2G"));
    };
    std::string_view digits = text;
    int shift = 0;
    if (!text.empty() && kUnits.find(text.back()) != std::string_view::npos) {
        shift = 10 * static_cast<int>(kUnits.find(text.back()) / 2 + 1);
        digits.remove_suffix(1);
    }
    std::uint64_t count = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (read.ec != std::errc() || read.ptr != digits.data() + digits.size()) refuse();
    if (count == 0 || count > (static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) >> shift)) refuse();
    return count << shift;
}

}  // namespace hostkit
