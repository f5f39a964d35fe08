#include <mailengine/parser/Walk.h>

#include "Reader.h"

namespace {

constexpr char kMime[] = "MIME-Version: 1.0\n";

std::string Multipart(const std::string& subtype, const std::string& boundary, const std::string& parts) {
    return "Content-Type: multipart/" + subtype + "; boundary=\"" + boundary + "\"\n\n" + parts;
}

// Result, names and body of a message read without extraction.
std::string Walked(const std::string& message) {
    const Read read(Mail(kMime + message), nullptr, 1);
    const int names = read.summary.Find(" File:    ");
    const CString files = names == -1 ? CString() : read.summary.Mid(names + 10);
    return Joined({read.result}) + "|" + Text(files.Left(files.GetLength() - 2)) + "|" + Text(read.body);
}

void CheckParts(const char* subtype, const Rows& rows) {
    Check(rows, [&](const std::string& parts) { return Walked(Multipart(subtype, "b", parts)); });
}

TEST(Mixed, TellsBodyFromAttachment) {
    const std::string text = "\n--b\nContent-Type: text/plain\n\n", file = "\n--b\nContent-Type: a/b; name=n\n\ndata";
    CheckParts("mixed",
               {{text + "body" + file, "0|n|"},
                {"\n--b\n" + Multipart("mixed", "c", "\n--c--") + "\n--b--", "0||"},
                {"\n--b\n" + Multipart("alternative", "c", "\n--c\n\n1\n--c--") + file + "\n--b--", "1|n|\r\n1"},
                {"\n--b\n\nplain\n--b--", "1||\r\nplain"},  // no field: the body begins with the empty line
                {"\n--b\nX: y\n\nplain\n--b--", "1||X: y\r\n\r\nplain"},
                {"--b" + file + "\n--b--", "1|n|"},  // the empty line's CRLF is the delimiter's
                {"", "0||"},
                {"\n--b\nContent-Type: text/plain\nContent-Transfer-Encoding: base64\n\nQ\n--b--", "0||"},
                {Repeated("\n--b", 3000) + text + "1\n--b--", "1||1"}});
}

TEST(Alternative, TakesTheFirstPlainText) {
    CheckParts("alternative",
               {{"\n--b\nContent-Type: text/html\n\nhtml\n--b\n\n1\n", "0||"},
                {"\n--b\nContent-Type: text/plain; name=n\n\n1\n--bc\n\n2\n--b--", "1||1"},  // a longer one counts
                {Repeated("\n--b", 3000) + "\n--b\nContent-Type: a/b\n--b--", "1||"},
                {Repeated("\n--b", 3000) + "\n--b--", "1||"}});
}

TEST(Related, WalksPartsOfAnyType) {
    const std::string text = "\n--b\nContent-Type: text/plain\n\n";
    CheckParts(
        "related",
        {{"\n--b\n" + Multipart("mixed", "c", "\n--c\nContent-Type: a/b; name=n\n\nx\n--c--") + "\n--b--", "1|n|"},
         {text + "1\n--b\nContent-Type: image/gif; name=i\n\nx", "0||"},
         {"\n--b\nContent-Type: text/html; name=h\n\nx\n--b--", "1||"},
         {"\n--b\n" + Multipart("related", "c", "\n--c\n\n1") + "\n--b--", "0||"},
         {"\n--b--", "1||"}});
}

// A related part inside a related part and so on, around a text.
std::string Nested(int levels) {
    std::string open, close;
    for (int i = 0; i < levels; ++i) {
        const std::string boundary = "x" + std::to_string(i) + "x";
        open += Multipart("related", boundary, "\n--" + boundary + "\n");
        close = "\n--" + boundary + "--" + close;
    }
    return open + "\ntext" + close;
}

std::string NestedMails(int levels) {
    std::string mail = "Subject: inner\n\ntext";
    for (int i = 0; i < levels; ++i) {
        const std::string boundary = "x" + std::to_string(i) + "x";
        const std::string part = "\n--" + boundary + "\nContent-Type: message/rfc822; name=m\n\n" + kMime + mail;
        mail = Multipart("mixed", boundary, part + "\n--" + boundary + "--");
    }
    return mail;
}

TEST(Nesting, EndsAtItsLimit) {
    EXPECT_EQ(Walked(Nested(parser::kMaxNesting)), "1||\r\ntext");
    EXPECT_EQ(Walked(Nested(parser::kMaxNesting + 1)), "0||");
    EXPECT_EQ(Walked(NestedMails(1)), "1|inner|");
    EXPECT_EQ(Walked(NestedMails(parser::kMaxNesting)), "1|m|");
    EXPECT_EQ(Walked(NestedMails(parser::kMaxNesting + 1)), "0||");
}

TEST(Offsets, TellWhereTheWalkEnds) {
    Check({{"Content-Type: a/b\n\nx", "1 19 22 old"},
           {"Content-Type: text/plain\nX: y", "1 30 30 "},
           {"Content-Type: multipart/mixed; boundary=b\n\n--b\n\nx\n--b--\n", "1 43 60 \r\nx"},
           {"Content-Type: multipart/related; boundary=b\n\n", "0 -1 45 old"},
           {"Content-Type: image/gif; name=n\n\nx\n", "1 -1 -1 old"}},  // names alone
          [](const std::string& text) {
              CStringArray names;
              CString body = "old";
              int top = -1, end = -1;
              const int result = Reader().PerseMime(Mail(text), 0, nullptr, body, names, nullptr, top, end);
              return Joined({result, top, end}) + " " + Text(body);
          });
}

}  // namespace
