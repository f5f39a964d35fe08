#include <algorithm>
#include <glib.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/files/FileName.h>
#include <memory>

#include <mailengine/support/platform/text/Unicode.h>

namespace hostkit {
namespace {

constexpr std::size_t kMaxExtensionBytes = 24;

std::string Printable(std::string_view name) {
    std::string printable;
    for (std::size_t i = 0; i < name.size();) {
        const platform::Character at = platform::Utf8CharacterAt(name, i);
        const bool isFit = at.code != platform::kNoCharacter && !IsUnseen(at.code) && at.code != '/' && at.code != '\\';
        if (isFit)
            printable += name.substr(i, at.bytes);
        else
            printable += '_';
        i += at.bytes;
    }
    return printable;
}

std::string Trimmed(const std::string& name) {
    const std::size_t first = name.find_first_not_of(" .-");
    if (first == std::string::npos) return "";
    return name.substr(first, name.find_last_not_of(' ') - first + 1);
}

// The longest head of at most bytes that cuts no character.
std::string_view Head(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80)
        --bytes;
    return text.substr(0, bytes);
}

std::string WithSuffix(std::string_view name, const std::string& suffix, std::size_t maxBytes) {
    const std::string_view extension = ExtensionOf(name);
    const std::string_view stem = name.substr(0, name.size() - extension.size());
    const std::size_t behind = suffix.size() + extension.size();
    return std::string(Head(stem, maxBytes - std::min(maxBytes, behind))) + suffix + std::string(extension);
}

// What two names share that some file system takes for one.
std::string KeyOf(const std::string& name) {
    const std::unique_ptr<char, decltype(&g_free)> normal(g_utf8_normalize(name.c_str(), -1, G_NORMALIZE_ALL), &g_free);
    if (!normal) return name;
    const std::unique_ptr<char, decltype(&g_free)> folded(g_utf8_casefold(normal.get(), -1), &g_free);
    return folded.get();
}

}  // namespace

std::string_view ExtensionOf(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const bool isNone = dot == std::string_view::npos || dot == 0 || name.size() - dot > kMaxExtensionBytes ||
                        name.find(' ', dot) != std::string_view::npos;
    return isNone ? std::string_view() : name.substr(dot);
}

std::string CleanFileName(std::string_view name, std::size_t maxBytes) {
    const std::string clean = Trimmed(Printable(name));
    return clean.size() <= maxBytes ? clean : WithSuffix(clean, "", maxBytes);
}

std::string UniqueFileNames::Take(const std::string& name) {
    const std::string key = KeyOf(name);
    if (m_taken.insert(key).second) return name;
    for (int& number = m_next[key];;) {
        std::string other = WithSuffix(name, " (" + std::to_string(++number) + ")", kMaxFileNameBytes);
        if (m_taken.insert(KeyOf(other)).second) return other;
    }
}

}  // namespace hostkit
