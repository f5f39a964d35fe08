#include "Reader.h"

namespace {

constexpr char kMime[] = "MIME-Version: 1.0\n";

Read Reply(const std::string& fields) {
    return Read(Mail(kMime + fields), nullptr, 1);
}

Read Open(const std::string& fields) {
    return Read(Mail(kMime + fields), nullptr, 0);
}

TEST(Opening, NeedsMimeVersionOneAndReadsTheHeaderAnyhow) {
    Check({{"mime-version: 1.0\n", "1 Subject: b\r\n"},
           {"MIME-Version:1.0\n", "1 Subject: b\r\n"},
           {"MIME-Version: 1.00\n", "0 "},
           {"MIME-Version: 1.0 (x)\n", "0 "},
           {"", "0 "}},
          [](const std::string& field) {
              const Read read(Mail("To: a\n" + field + "Subject: s\n\nSubject: b\n"), nullptr, 0);
              EXPECT_EQ(Text(read.subject) + read.Lists(), "s[a]");
              return Joined({read.result}) + " " + Text(read.body);
          });
}

TEST(Opening, TakesTheFirstFieldOfEachNameUpToTheBody) {
    Check({{"SUBJECT:x\nSubject: y\n\n", "x"},
           {"\nSubject: body\n", "body"},  // its top is where the header ends
           {"\n\nSubject: body\n", ""},
           {"\nx\nSubject: body\n", ""},
           {"Subject: no empty line\n", "no empty line"},
           {"Subject: a\n\tb\n c\n\n", "abc"},
           {Repeated("X: y\n", 500) + "Subject: z" + Repeated("\n yy", 500) + "\n\n", "z" + Repeated("yy", 500)}},
          [](const std::string& text) { return Text(Open(text).subject); });
    const CString above = Mail("Content-Type: multipart/mixed; boundary=b\n" + (kMime + std::string("X: y\n\nbody")));
    EXPECT_EQ(Read(above, nullptr, 0).body, "body") << "a Content-Type above MIME-Version is not seen";
}

TEST(Opening, FillsListsWithoutSendersAndRepeats) {
    const std::string fields = "From: f\nTo: A <a>, a, \"B\" <b>\nCc: a, a\nBcc: x\nReply-To: y\n\n";
    EXPECT_EQ(Open(fields).Lists(), "[A <a>][B <b>](a)(a)");
    EXPECT_EQ(Open("To:\n\n").Lists(), "[]");
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
    const std::string from = "From: a, a,, A <a>\nTo: a, b\nCc: b\n";
    EXPECT_EQ(Reply(from + "\n").Lists(), "[a][A <a>](b)(b)");
    Check({{"Message-ID: <m>\nReferences: <r>\n\t<s>\n\nx", "<m> <r><s>\r\n\t<m>"},
           {"Message-ID: <m>\n\n", "<m> <m>"},
           {"References: <r>\n\n", " "}},
          [](const std::string& fields) {
              CString inReplyTo, references;
              const Read read = Reply(fields);
              read.document.GetInReplyTo(inReplyTo);
              read.document.GetReferences(references);
              return Text(inReplyTo) + " " + Text(references);
          });
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

TEST(Summary, HasALineForEachField) {
    const Read read = Open("From: A <a>, b\nTo: c\nDate: d\nSubject: =?x?X?s?=\n\n");
    EXPECT_EQ(read.summary, Mail(" From:    A <a>;b\n To:      c\n Date:    d\n Subject: s\n"));
    EXPECT_EQ(Open("").summary, Mail(" From:    \n To:      \n Date:    \n Subject: \n"));
    EXPECT_NE(Open("Cc: a, b\n\n").summary.Find("\r\n Cc:      a;b\r\n"), -1);
}

TEST(Subject, IsStoredOnSuccessOnly) {
    const std::string refused = "Subject: x\nContent-Transfer-Encoding: base64\n\nQ";
    Check({{"Subject: x\n\n", "0 old"}, {kMime + std::string("Subject: x\n\n"), "1 x"}, {kMime + refused, "0 old"}},
          [](const std::string& text) {
              CString subject = "old";
              const int result = Reader().GetSubject(Mail(text), subject);
              EXPECT_EQ(Read(Mail(text), nullptr, 1).result, result);
              return Joined({result}) + " " + Text(subject);
          });
}

}  // namespace
