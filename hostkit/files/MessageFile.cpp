#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/files/MessageFile.h>

namespace hostkit {

namespace {

void CheckSize(const std::string& name, std::uintmax_t bytes) {
    if (bytes <= kMaxMessageBytes) return;
    throw Failure(FailureKind::Message, {Field::None, name},
                  Words("is 2 GiB or larger, which no message may be; give single messages"));
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

}  // namespace

CString MessageOf(std::string bytes, const std::string& name) {
    if (HasLfLines(bytes)) bytes = WithCrlf(bytes);
    CheckSize(name, bytes.size());
    return CString(std::move(bytes));
}

std::string ReadMessage(const std::filesystem::path& path) {
    std::error_code none;
    const std::uintmax_t size = std::filesystem::file_size(path, none);
    if (!none) CheckSize(path.native(), size);
    return ReadWhole(path, kMaxMessageBytes);
}

std::string ReadMessage(int descriptor, const std::string& name) {
    return ReadWhole(descriptor, name, kMaxMessageBytes);
}

}  // namespace hostkit
