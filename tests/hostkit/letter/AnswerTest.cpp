#include <gtest/gtest.h>
#include <hostkit/letter/Answer.h>
#include <hostkit/letter/SaveLetter.h>
#include <hostkit/letter/answer/Forward.h>
#include <sys/stat.h>
#include <tests/FileBytes.h>
#include <tests/FixedSystem.h>
#include <tests/TempFolder.h>

namespace {

constexpr char kMail[] =
    "From: \"a <b>, \\\\c\" <a@b>\nTo: =?utf-8?B?8J+YgOi/lA==?= <c@d>, me@x\nMessage-ID: <2@x>\n"
    "References: <0@x>\n <1@x>\nSubject: =?utf-8?B?5Lya8J+YgC8uLg==?=\n\nh\xC3\xB6\n";

TEST(Answer, IsTheSameThroughALetterThatCanBeEdited) {
    const CFixedSystem system;
    const CTempFolder folder;
    hostkit::Letter letter;
    letter.from = "私 <me@x>";
    letter.body = "はい\n";
    letter.closing = "敬具";
    for (const bool upper : {false, true}) {
        letter.upperReply = upper;
        CMailDoc straight;
        const auto warnings = hostkit::PrepareAnswer(kMail, letter, straight, {hostkit::Audience::All});
        const hostkit::PreparedAnswer answer = hostkit::AnswerOf(kMail, letter, {hostkit::Audience::All});
        EXPECT_EQ(answer.warnings, warnings);
        CMailDoc edited;
        answer.letter.Fill(edited);
        EXPECT_TRUE(hostkit::SaveLetter(straight, folder / "straight.eml"));
        EXPECT_TRUE(hostkit::SaveLetter(edited, folder / "edited.eml"));
        EXPECT_EQ(Shown(ReadWholeFile(folder / "edited.eml")), Shown(ReadWholeFile(folder / "straight.eml")));
    }
}

TEST(Forward, AttachesTheBytesAsTheyCame) {
    const CTempFolder folder;
    for (const char* const name : {"会〓_...eml", "会〓_.. (1).eml"}) {
        const hostkit::Letter letter = hostkit::ForwardOf(kMail, folder / "made");
        EXPECT_EQ(letter.subject, "Fwd: 会〓/..");
        ASSERT_EQ(letter.attachments, std::vector<std::filesystem::path>{folder / "made/" + name});
        EXPECT_EQ(ReadWholeFile(letter.attachments[0]), kMail);
        struct stat status;
        EXPECT_EQ(stat(letter.attachments[0].c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u);
    }
    EXPECT_THROW(hostkit::ForwardOf("", folder / "none"), hostkit::Failure);
    EXPECT_FALSE(std::filesystem::exists(folder / "none"));
}

}  // namespace
