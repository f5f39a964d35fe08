#include "Reader.h"

namespace {

TEST(Addresses, AreCutAtCommasOutsideALeadingQuote) {
    Check({{"\"P, Q\" <r>, bb", "[\"P, Q\" <r>][bb]"},
           {"\"A \\\" B, D\" <r>", "[\"A \\\" B, D\" <r>]"},
           {"J \"x, y\" <r>", "[J \"x][y\" <r>]"},
           {"", "[]"},
           {",,", "[][][]"},
           {"\"abc", "[\"abc]"},
           {"\"a\\\", b", "[\"a\\\"][b]"},
           {"\"\x95\x5C\", b\" <r>", "[\"\x95\x5C\", b\" <r>]"}},  // 表 ends in the byte of a backslash
          [](const std::string& value) {
              CStringArray list;
              EXPECT_EQ(Reader().PerseAddressField(CString("To: " + value + "\r\n"), 0, "To", list), 1);
              std::string items;
              for (int i = 0; i < list.GetSize(); ++i)
                  items += "[" + Text(list.GetAt(i)) + "]";
              return items;
          });
    CStringArray list;
    EXPECT_EQ(Reader().PerseAddressField("To: a", 0, "To", list), 0);
    EXPECT_EQ(list.GetSize(), 0);
}

}  // namespace
