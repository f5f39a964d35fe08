// Whole files as bytes, and bytes as a text that can be read.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline std::string ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteWholeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Control bytes and bytes above 0x7F as escapes, so that a failure can be read.
inline std::string Shown(const std::string& bytes) {
    constexpr char kHex[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const unsigned int byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F)
            text += c;
        else
            text += std::string("\\x") + kHex[byte >> 4] + kHex[byte & 15] + (byte == '\n' ? "\n" : "");
    }
    return text;
}
