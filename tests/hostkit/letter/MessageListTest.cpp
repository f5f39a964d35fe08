#include <gtest/gtest.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/files/MessageSource.h>
#include <hostkit/letter/MessageList.h>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>

namespace {

using hostkit::MessageList;

std::string RowsOf(MessageList& list) {
    for (int before = -1; list.ReadNext(); before = list.Percent())
        EXPECT_LE(before, list.Percent());
    EXPECT_EQ(list.Percent(), 100);
    std::string rows;
    for (const MessageList::Entry& entry : list.Entries()) {
        const hostkit::Glance& glance = entry.glance;
        rows += entry.file.filename().native() + '|' + std::to_string(entry.number) + '|' + glance.from.name + '|' +
                glance.from.address + '|' + glance.subject + '|' + (glance.time ? std::to_string(*glance.time) : "") +
                '|' + (glance.hasAttachments ? "@" : "") + entry.fault + '\n';
    }
    return rows;
}

TEST(MessageList, ShowsWhatTheHeadersHold) {
    const CTempFolder folder;
    const std::string mail =
        "Received: " + std::string(40000, 'x') +
        "\r\nFrom: =?utf-8?B?6auZ?= <a@b>, c@d\r\nSubject: =?iso-2022-jp?B?GyRCN28bKEI=?=\r\n 2\r\nDate: Thu, "
        "19 Nov 2026 10:30:49 +0900\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n";
    WriteWholeFile(folder / "1", mail);
    WriteWholeFile(folder / "2", "\n\nsubject:\xE6\x97\xA5\nContent-Type: application/pdf\n\nSubject: body\n");
    WriteWholeFile(folder / "3", "\xFF\xD8\xFF\xE0\nSubject: x\n\n");
    WriteWholeFile(folder / "4", "");
    WriteWholeFile(
        folder / "5",
        "From x\nSubject: a\n\n>From b\n\nFrom y\n\njunk\nFrom z\nDate: never\nContent-Type: text/plain\n\n" +
            std::string(200000, 'y') + "\nFrom w\nSubject: end");
    WriteWholeFile(folder / ".6", mail);
    MessageList list(folder.Native());
    EXPECT_EQ(list.Entries().size(), 4u);
    list.Read(1);
    EXPECT_EQ(list.Entries()[1].glance.subject, "日");
    const std::string none = "is no message: it does not begin with header fields\n";
    EXPECT_EQ(RowsOf(list), "1|0|髙|a@b|件 2|1795051849|@\n2|0|||日||@\n3|0|||||" + none +
                                "4|0|||||is empty\n5|1|||a||\n5|2|||||" + none + "5|3|||||\n5|4|||end||\n");
    hostkit::MessageSource source(folder.Native());
    for (std::size_t i = 0; i < list.Entries().size(); ++i)
        EXPECT_EQ(list.Message(i), source.Next()->bytes) << i;
    WriteWholeFile(folder / "5", "From x\n");
    EXPECT_THROW((void)list.Message(4), hostkit::Failure);
    std::filesystem::remove(folder / "1");
    EXPECT_THROW((void)list.Message(0), hostkit::Failure);
}

TEST(MessageList, NamesWhatCannotBeRead) {
    const CTempFolder folder;
    WriteWholeFile(folder / "box", "From x\nSubject: a\n\n");
    MessageList list(folder.Native());
    MessageList late(folder / "none");
    std::filesystem::remove(folder / "box");
    EXPECT_EQ(RowsOf(list), "box|1|||||cannot be read: No such file or directory\n");
    EXPECT_EQ(RowsOf(late), "none|0|||||cannot be read: No such file or directory\n");
}

}  // namespace
