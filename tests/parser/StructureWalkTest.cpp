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

TEST(Multiparts, AreReadByTheirKind) {
    const std::string file = "\n--b\nContent-Type: a/b; name=n\n\ndata";
    CheckParts("mixed",
               {{"\n--b\n" + Multipart("alternative", "c", "\n--c\n\n1\n--c--") + file + "\n--b--", "1|n|\r\n1"},
                {"--b" + file + "\n--b--", "1|n|"},  // the empty line's CRLF is the delimiter's
                {Repeated("\n--b", 3000) + "\n--b\nContent-Type: text/plain\n\n1\n--b--", "1||1"}});
    CheckParts("alternative",
               {{"\n--b\nContent-Type: text/plain; name=n\n\n1\n--bc\n\n2\n--b--", "1||1"},  // a longer one counts
                {Repeated("\n--b", 3000) + "\n--b\nContent-Type: a/b\n--b--", "1||"}});
    CheckParts("related",
               {{"\n--b\n" + Multipart("mixed", "c", "\n--c" + file.substr(4) + "\n--c--") + "\n--b--", "1|n|"}});
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
    EXPECT_EQ(Walked(NestedMails(1)), "1|inner|");
    EXPECT_EQ(Walked(NestedMails(parser::kMaxNesting)), "1|m|");
}

// Each message is opened; the way to the first fault, its name, and what stands at its offset.
TEST(Faults, AreTheFirstOnesAndSayWhereTheyLie) {
    using Kind = MailFault::Kind;
    const std::string type = "\n--b\nContent-Type: ", end = "\n--b--\n", file = type + "a/b; name=n\n";
    const std::string attached = type + "message/rfc822\n\n", image = "Content-Type: image/gif";
    const auto mixed = [](const std::string& parts) { return kMime + Multipart("mixed", "b", parts); };
    const auto related = [](const std::string& parts) { return kMime + Multipart("related", "b", parts); };
    const std::string html = kMime + Multipart("alternative", "c", "\n--c\nContent-Type: text/plain");
    for (const auto& [message, kind, where] : std::vector<std::tuple<std::string, Kind, const char*>>{
             {"", Kind::kEmpty, "||"},
             {"S: x\n\n", Kind::kNoMimeVersion, "||S"},
             {"MIME-Version: 1.0 (x)\n\n", Kind::kOtherMimeVersion, "|1.0 (x)|M"},
             {mixed(attached + end), Kind::kEmpty, "1 0||\r"},
             {mixed("\n--b\n\nx" + attached + "y" + end), Kind::kNoMimeVersion, "2 0||y"},
             {mixed(attached + html + "\n\nx" + end), Kind::kNoClosingDelimiter, "1 0|c|\r"},
             {mixed(attached + html + "\n--c--" + end), Kind::kNoEmptyLine, "1 0 1||-"},
             {kMime + Nested(parser::kMaxNesting + 1), Kind::kNestsTooDeep, nullptr},
             {kMime + NestedMails(parser::kMaxNesting + 1), Kind::kNestsTooDeep, nullptr},
             {mixed("--b" + end), Kind::kNone, nullptr},
             {mixed(""), Kind::kNoDelimiter, "|b|\r"},
             {mixed(file + "\nx"), Kind::kNoClosingDelimiter, "|b|\r"},
             {mixed(type + "multipart/mixed" + end), Kind::kPartWithoutName, "1|multipart/mixed|-"},
             {related(type + "multipart/related\n\nx" + end), Kind::kNoBoundary, "1||\r"},
             {related("\n--b\n" + image + "\n\nx\n\n" + end), Kind::kImageWithoutName, "1|image/gif|\r"},
             {kMime + image + "; name=i\nX: y", Kind::kNoEmptyLine, "|i|X"},
             {kMime + image + "; name=i\n\nx", Kind::kDataWithoutEnd, "|i|\r"},
             {mixed(file + end), Kind::kLastFileIsEmpty, "1|n|\r"},
             {mixed(file.substr(0, file.size() - 1) + end), Kind::kNoEmptyLine, "1|n|-"},
             {mixed(file + "Content-Transfer-Encoding: B\n\nQ" + end), Kind::kFileNotDecoded, "1|n|Q"},
             {mixed(type + "text/plain\nContent-Transfer-Encoding: B\n\nQ" + end), Kind::kTextNotDecoded, "1||Q"},
             {mixed(file + "\nx" + end), Kind::kFileNotMade, "1|n|x"}}) {
        CMailDoc document;
        MailFault fault;
        const CString mail = Mail(message);
        EXPECT_EQ(Reader().Perse(mail, "nowhere", document, 0, fault) != 0, kind == Kind::kNone);
        EXPECT_EQ(fault.kind, kind) << message.substr(0, 300);
        const std::string found = Joined(fault.path) + "|" + Text(fault.name) + "|";
        if (where != nullptr) {
            EXPECT_EQ(Shown(found + Text(mail.Mid(static_cast<int>(fault.offset), 1))), Shown(where)) << message;
        }
    }
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
