#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <tests/FileBytes.h>

#include <mailengine/support/platform/files/Path.h>

namespace {

// The bytes of a C++ literal's inside.
std::string Unescaped(const std::string& literal) {
    std::string bytes;
    for (std::size_t i = 0; i < literal.size(); ++i) {
        if (const bool isPlain = literal[i] != '\\'; isPlain || literal[++i] != 'x') {
            bytes += isPlain ? literal[i] : literal[i] == 'r' ? '\r' : '\n';
        } else {
            bytes += static_cast<char>(std::stoi(literal.substr(i + 1, 2), nullptr, 16));
            i += 2;
        }
    }
    return bytes;
}

// Whoever changes a text changes its comment, which is what people read, and its bytes, which is what users see.
TEST(Texts, AreWhatTheirCommentsSay) {
    std::istringstream header(ReadWholeFile(MAILENGINE_TEST_DATA "/../../mailengine/support/Texts.h"));
    int texts = 0;
    for (std::string line, comment, bytes; std::getline(header, line);) {
        const std::size_t first = line.find('"') + 1;  // 0 without one; clang-format keeps a literal to a line
        const std::string inside = first == 0 ? "" : Unescaped(line.substr(first, line.rfind('"') - first));
        (line.starts_with("//") ? comment : bytes) += inside;
        if (!line.ends_with("\";")) continue;
        EXPECT_EQ(platform::ToNativePath(bytes.c_str()), comment);
        ++texts;
        comment = bytes = "";
    }
    EXPECT_GT(texts, 20);
}

}  // namespace
