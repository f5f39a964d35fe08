#include <gtest/gtest.h>
#include <string>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>

#include <mailengine/writer/FileOutStream.h>

namespace {

TEST(FileOutStream, WritesTheTextUpToItsNulAndNothingWhileClosed) {
    const CTempFolder folder;
    const std::string path = folder / "out.eml";
    {
        CFileOutStream stream(path.c_str());
        EXPECT_EQ(stream.WriteString("early"), 0);
        ASSERT_NE(stream.Open(), 0);
        EXPECT_NE(stream.WriteString("a\r\n\n\0b"), 0);
        EXPECT_NE(stream.WriteString(nullptr), 0);
        EXPECT_NE(stream.Open(), 0);  // an open stream stays as it is
        EXPECT_NE(stream.WriteString("\x82\xA0"), 0);
    }
    EXPECT_EQ(ReadWholeFile(path), "a\r\n\n\x82\xA0");
}

TEST(FileOutStream, TellsThatAWriteFailedUntilItIsOpenedAnew) {
    CFileOutStream full("/dev/full");
    ASSERT_NE(full.Open(), 0);
    EXPECT_EQ(full.Failed(), 0);
    EXPECT_EQ(full.WriteString("x"), 0);
    full.Close();
    EXPECT_NE(full.Failed(), 0);
    ASSERT_NE(full.Open(), 0);
    EXPECT_EQ(full.Failed(), 0);
}

}  // namespace
