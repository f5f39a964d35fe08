#include <gtest/gtest.h>

#include <mailengine/support/platform/files/Path.h>

namespace {

// Whoever changes a text changes what it reads, which is what people see in the list, and its bytes, which users see.
TEST(Texts, AreWhatTheyRead) {
#define TEXT(name, reads, bytes) EXPECT_EQ(platform::ToNativePath(bytes), reads);
#include <mailengine/support/TextList.inc>
#undef TEXT
}

}  // namespace
