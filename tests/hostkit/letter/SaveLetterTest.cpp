#include <gtest/gtest.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/Letter.h>
#include <hostkit/letter/SaveLetter.h>
#include <hostkit/letter/SendLetter.h>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>

namespace {

using State = hostkit::Outcome::State;

TEST(SaveLetter, LeavesTheOldFileUnlessItIsDone) {
    const CTempFolder folder;
    WriteWholeFile(folder / "old.eml", "old");
    WriteWholeFile(folder / "big", std::string(5'000'000, 'x'));
    hostkit::Letter letter;
    letter.attachments = {folder / "big"};
    CMailDoc doc;
    letter.Fill(doc);
    int last = -1;
    const auto cancelAt = [&](int limit) {
        last = -1;
        return [&last, limit](int percent) {
            EXPECT_LT(last, limit) << "asked again behind the cancel";
            EXPECT_GE(percent, last);
            return (last = percent) < limit;
        };
    };
    for (const int limit : {0, 1, 50, 90}) {
        const hostkit::Outcome outcome = hostkit::SaveLetter(doc, folder / "old.eml", cancelAt(limit));
        EXPECT_EQ(outcome.state, State::Cancelled) << limit;
        EXPECT_EQ(ReadWholeFile(folder / "old.eml"), "old");
        const hostkit::Outcome attached = hostkit::SaveLetter(doc, folder / "big", cancelAt(limit));
        ASSERT_EQ(attached.state, State::Failed);
        EXPECT_EQ(attached.failure->Kind(), hostkit::FailureKind::SameFile);
    }
    EXPECT_EQ(hostkit::SaveLetter(doc, folder / "old.eml", cancelAt(101)).state, State::Done);
    EXPECT_EQ(last, 100);
    EXPECT_GT(std::filesystem::file_size(folder / "old.eml"), 6'000'000u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Native()), {}), 2);
}

// The server is not there: who was asked before it was looked for was asked while the copy was made.
TEST(SendLetter, AsksWhileItCopiesTheAttachments) {
    const CTempFolder folder;
    WriteWholeFile(folder / "big", std::string(5'000'000, 'x'));
    hostkit::Letter letter;
    letter.from = "a@b";
    letter.to = {"c@d"};
    letter.attachments = {folder / "big"};
    CMailDoc doc;
    letter.Fill(doc);
    hostkit::SetServer("127.0.0.1:1", doc);
    int last = 0;
    const auto cancelAt = [&](int limit) { return [&last, limit](int percent) { return (last = percent) < limit; }; };
    EXPECT_EQ(hostkit::SendLetter(doc, cancelAt(10)).state, State::Cancelled);
    EXPECT_EQ(hostkit::SendLetter(doc, cancelAt(101)).state, State::Failed);
    EXPECT_GT(last, 30);
}

}  // namespace
