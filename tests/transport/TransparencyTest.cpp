#include <gtest/gtest.h>
#include <tests/writer/MessageStreams.h>

#include <mailengine/transport/TransparencyStream.h>

#include "TransportTesting.h"

namespace {

std::string WriteInSteps(const std::string& text, std::size_t step) {
    CMemoryStream memory;
    CTransparencyStream stream(memory);
    EXPECT_TRUE(stream.Open());
    for (std::size_t at = 0; at < text.size(); at += step)
        EXPECT_TRUE(stream.WriteString(text.substr(at, step).c_str()));
    return memory.Text();
}

TEST(Transparency, MakesEveryMixOfDotsAndLineEndsFitAtEveryCut) {
    // All texts of up to six of these four characters, cut after each number of bytes.
    for (unsigned int length = 0; length <= 6; ++length)
        for (unsigned int number = 0; number < 1U << (2 * length); ++number) {
            std::string text;
            for (unsigned int at = 0; at < length; ++at)
                text += ".\r\na"[number >> (2 * at) & 3];
            const std::string wire = MadeTransparent(text);
            for (std::size_t step = 1; step <= length; ++step)
                ASSERT_EQ(WriteInSteps(text, step), wire) << testing::PrintToString(text) << step;
        }
}

TEST(Transparency, KeepsLongTextsWholeAcrossItsPieces) {
    for (std::size_t pad : {4090U, 4094U, 4095U, 4096U, 4097U, 9000U}) {
        const std::string run(pad, 'x');
        const std::string text = "." + run + "\r\n.\r\n" + run + "\n." + run + "\r." + run + "\r";
        const std::string wire = MadeTransparent(text);
        for (std::size_t step : {std::size_t{1}, std::size_t{4096}, pad, text.size()})
            ASSERT_EQ(WriteInSteps(text, step), wire) << pad << " by " << step;
    }
}

TEST(Transparency, HandsGoodTextOnCallByCallAndTellsOfEachFailure) {
    const std::vector<std::string> texts = {std::string(72, 'A'), "\r\n", "", "a.b\r\nc\r\n" + std::string(9000, 'x')};
    CMemoryStream memory, failing(2);
    CTransparencyStream stream(memory), broken(failing);
    for (const std::string& text : texts)
        EXPECT_TRUE(stream.WriteString(text.c_str()));
    EXPECT_EQ(memory.calls, texts);
    EXPECT_FALSE(broken.WriteString(("." + std::string(9000, 'x')).c_str()));
}

}  // namespace
