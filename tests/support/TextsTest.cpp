#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <tests/platform/TempFolder.h>

#include <mailengine/support/platform/Path.h>

namespace {

// The bytes between the quotes of a C++ literal or a comment.
std::string Unescaped(const std::string& literal) {
    std::string bytes;
    for (std::size_t i = 0; i < literal.size(); ++i) {
        if (literal[i] != '\\') {
            bytes += literal[i];
        } else if (literal[++i] == 'x') {
            bytes += static_cast<char>(std::stoi(literal.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            bytes += literal[i] == 'r' ? '\r' : '\n';
        }
    }
    return bytes;
}

// Whoever changes a text changes its comment, which is what people read, and its bytes, which is what users see.
TEST(Texts, AreWhatTheirCommentsSay) {
    const std::string header = TempFolder::Read(MAILENGINE_TEST_DATA "/../../mailengine/support/Texts.h");
    const std::regex entry("// \"(.*)\"\ninline constexpr char (\\w+)\\[\\] =([^;]*);");
    const std::regex piece("\"([^\"]*)\"");
    int entries = 0;
    for (std::sregex_iterator at(header.begin(), header.end(), entry), end; at != end; ++at, ++entries) {
        const std::string literals = (*at)[3];
        std::string bytes;
        for (std::sregex_iterator part(literals.begin(), literals.end(), piece); part != end; ++part)
            bytes += Unescaped((*part)[1]);
        EXPECT_EQ(platform::ToNativePath(bytes.c_str()), Unescaped((*at)[1])) << (*at)[2];
    }
    std::size_t declared = 0;
    for (std::size_t at = 0; (at = header.find("constexpr char", at)) != std::string::npos; ++at)
        ++declared;
    EXPECT_EQ(static_cast<std::size_t>(entries), declared);
    EXPECT_GT(entries, 20);
}

}  // namespace
