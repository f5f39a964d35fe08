#include <climits>
#include <hostkit/characters/Failure.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/files/MessageFile.h>

namespace hostkit {

namespace {

constexpr std::size_t kMaxMessageBytes = INT_MAX;  // offsets in a message are int

void CheckSize(const std::string& name, std::uintmax_t bytes) {
    if (bytes <= kMaxMessageBytes) return;
    throw Failure(FailureKind::Message, {Field::None, name},
                  "is 2 GiB or larger, which no message may be; give single messages");
}

bool HasLfLines(const std::string& text) {
    const std::size_t end = text.find('\n');
    return end != std::string::npos && (end == 0 || text[end - 1] != '\r');
}

std::string WithCrlf(const std::string& text) {
    std::string crlf;
    crlf.reserve(text.size() + text.size() / 32);
    char before = '\0';
    for (const char ch : text) {
        if (ch == '\n' && before != '\r') crlf += '\r';
        crlf += ch;
        before = ch;
    }
    return crlf;
}

CString MessageOf(const std::string& name, std::string text) {
    if (HasLfLines(text)) text = WithCrlf(text);
    CheckSize(name, text.size());
    return CString(std::move(text));
}

}  // namespace

CString ReadMessage(const std::filesystem::path& path) {
    std::error_code none;
    const std::uintmax_t size = std::filesystem::file_size(path, none);
    if (!none) CheckSize(path.native(), size);
    return MessageOf(path.native(), ReadWhole(path, kMaxMessageBytes));
}

CString ReadMessage(int descriptor, const std::string& name) {
    return MessageOf(name, ReadWhole(descriptor, name, kMaxMessageBytes));
}

}  // namespace hostkit
