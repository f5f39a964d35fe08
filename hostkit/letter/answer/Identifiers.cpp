#include <hostkit/letter/answer/Identifiers.h>

namespace hostkit {

namespace {

constexpr std::string_view kFold = "\r\n\t";

// A parsed field has lost its folds, and its identifiers stand side by side, or a blank apart; each gets a line again.
void AppendFolded(std::string& folded, std::string_view entries) {
    const std::string plain = PlainBytes(entries);
    if (!folded.empty() && !plain.empty()) folded += kFold;
    char before = '\0';
    for (const char ch : plain) {
        if (before == '>' && ch == ' ') continue;
        if (before == '>' && ch == '<') folded += kFold;
        folded += ch;
        before = ch;
    }
}

}  // namespace

std::string PlainBytes(std::string_view text) {
    std::string plain;
    for (const char byte : text) {
        if (byte >= ' ' && byte <= '~') plain += byte;
    }
    const std::size_t first = plain.find_first_not_of(' ');
    return first == std::string::npos ? "" : plain.substr(first, plain.find_last_not_of(' ') - first + 1);
}

std::string FoldedIdentifiers(std::string_view identifiers) {
    std::string folded;
    for (std::size_t fold = 0; fold != std::string_view::npos;) {
        fold = identifiers.find(kFold);
        AppendFolded(folded, identifiers.substr(0, fold));
        if (fold != std::string_view::npos) identifiers.remove_prefix(fold + kFold.size());
    }
    return folded;
}

}  // namespace hostkit
