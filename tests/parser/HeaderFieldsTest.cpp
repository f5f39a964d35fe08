#include "Reader.h"

namespace {

constexpr char kMime[] = "MIME-Version: 1.0\n";

Read Reply(const std::string& fields) {
    return Read(Mail(kMime + fields), nullptr, 1);
}

Read Open(const std::string& fields) {
    return Read(Mail(kMime + fields), nullptr, 0);
}

TEST(Opening, TakesAFieldUpToTheBody) {
    Check({{"\nSubject: body\n", "body"},  // its top is where the header ends
           {"\n\nSubject: body\n", ""},
           {Repeated("X: y\n", 500) + "Subject: z" + Repeated("\n yy", 500) + "\n\n", "z" + Repeated("yy", 500)}},
          [](const std::string& text) { return Text(Open(text).subject); });
}

TEST(Opening, FillsListsWithoutSendersAndRepeats) {
    const std::string fields = "From: f\nTo: A <a>, a, \"B\" <b>\nCc: a, a\nBcc: x\nReply-To: y\n\n";
    EXPECT_EQ(Open(fields).Lists(), "[A <a>][B <b>](a)(a)");
    Read used = Open("");
    used.document.AddToAddress(CAddress("", "", "old"));
    used.document.AddBccAddress(CAddress("", "", "old"));
    used.document.SetFiles({{"p", "n"}});
    EXPECT_EQ(Reader().Perse(Mail(kMime + fields), nullptr, used.document, 0), 1);
    used.document.GetFiles(used.files);
    EXPECT_TRUE(used.files.empty());
    EXPECT_EQ(used.Lists(), "[A <a>][B <b>](a)(a)");
    EXPECT_EQ(used.document.GetBccAddressSize(), 0u);
}

TEST(Replying, TurnsTheMailAround) {
    EXPECT_EQ(Reply("From: a, a,, A <a>\nTo: a, b\nCc: b\n\n").Lists(), "[a][A <a>](b)(b)");
}

TEST(Replying, ComparesManyAddresses) {
    std::string to, from;
    for (int i = 0; i < 1000; ++i) {
        to += std::to_string(i) + ",N <" + std::to_string(i) + ">,";
        from += std::to_string(i % 500) + ",";
    }
    const Read read = Reply("From: " + from + "\nTo: " + to + "\n\n");
    EXPECT_EQ(read.document.GetToAddressSize(), 500u);
    EXPECT_EQ(read.document.GetCcAddressSize(), 2 * 500u + 1) << "a reply's Cc keeps repeats, and the empty item";
    EXPECT_EQ(Open("To: " + to + "\n\n").document.GetToAddressSize(), 1001u);
}

}  // namespace
