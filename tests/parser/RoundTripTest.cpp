// What the writer writes the parser reads back to the same document.
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/TempFolder.h>
#include <tests/models/RoundTrip.h>

namespace {

TEST(RoundTrip, GeneratedDocumentsSurvive) {
    std::mt19937 random(20030401);
    for (int round = 0; round < 400 && !testing::Test::HasFailure(); ++round) {
        std::string bytes(random() % 4000, '\0');
        for (char& c : bytes)
            c = static_cast<char>(random() & 0xFF);
        const CTempFolder sources, target;
        EXPECT_EQ(CRoundTrip(bytes, sources.Path(), target.Path()).Run(), "") << "round " << round;
    }
}

}  // namespace
