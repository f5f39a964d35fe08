#include <gtest/gtest.h>
#include <string>

#include <mailengine/model/Address.h>
#include <mailengine/support/Texts.h>

namespace {

TEST(AddressText, FromTextSplitsNameAndAddress) {
    const struct {
        const char* text;
        const char* name;
        const char* address;
    } rows[] = {
        {" a@b ", "", " a@b "},
        {"", "", ""},
        {"<a@b>", "", "a@b"},
        {"A B  \t<\t a@b >", "A B", "a@b"},
        {" A <a@b>", " A", "a@b"},
        {"\"A B\" <a@b>", "A B", "a@b"},
        {"\"A \\\"x\\\" B\" <a@b>", "A \"x\" B", "a@b"},
        {"A \\\"x <a@b>", "A \"x", "a@b"},
        {"\" <a@b>", "", "a@b"},
        {"\"\x8E\x52\" <a@b>", "\"\x8E\x52\"", "a@b"},        // 山 keeps its quotes
        {"\"\x95\x5C\\\"\" <a@b>", "\"\x95\x5C\"\"", "a@b"},  // 表: its trail byte is no backslash
        {"\x95\x5C\" <a@b>", "\x95\x5C\"", "a@b"},            // nor does it escape a quote behind it
        {"A <a@b", "A", "a@b"},
        {"A > B <a@b>", "A > B", ""},
        {"A <a@b> <c@d>", "A", "a@b"},
    };
    for (const auto& row : rows) {
        CAddress address("group", "old", "old");
        address.FromText(row.text);
        EXPECT_EQ(address.GetDisplayName(), row.name) << row.text;
        EXPECT_EQ(address.GetMailAddress(), row.address) << row.text;
        EXPECT_EQ(address.GetGroupName(), "") << row.text;
    }
}

TEST(AddressText, ShowsNamesPlainAndQuoted) {
    const CAddress bare("g", "", "a@b");
    EXPECT_EQ(bare.ToText(), "a@b");
    EXPECT_EQ(bare.ToTextForMail(), "a@b");
    const CAddress named("g", "A \"x\" \\ B", "a@b");
    EXPECT_EQ(named.ToText(), "A \"x\" \\ B <a@b>");
    EXPECT_EQ(named.ToTextForMail(), "\"A \\\"x\\\" \\ B\" <a@b>");
}

TEST(AddressText, APlainNameComesBackAndAJapaneseOneWithItsQuotes) {
    CAddress address;
    address.FromText(CAddress("", "A \"x\"", "a@b").ToTextForMail());
    EXPECT_EQ(address.GetDisplayName(), "A \"x\"");
    address.FromText(CAddress("", "\x8E\x52", "a@b").ToTextForMail());
    EXPECT_EQ(address.GetDisplayName(), "\"\x8E\x52\"");
}

TEST(AddressCheck, TellsTheFirstFault) {
    const struct {
        const char* address;
        const char* message;  // null: valid
    } rows[] = {
        {"", texts::kAddressEmpty},
        {"\x8E\x52", texts::kAddressJapanese},
        {"a@\xB1", texts::kAddressJapanese},
        {"a", texts::kAddressMalformed},
        {"@b", texts::kAddressMalformed},
        {"a@", texts::kAddressMalformed},
        {"@", texts::kAddressMalformed},
        {"a@b@", nullptr},
        {" @ ", nullptr},
    };
    for (const auto& row : rows) {
        CString message("untouched");
        EXPECT_EQ(CAddress::CheckAddress(row.address, message), row.message == nullptr ? 1 : 0) << row.address;
        EXPECT_EQ(message, row.message == nullptr ? "untouched" : row.message) << row.address;
        EXPECT_EQ(CAddress("", "n", row.address).IsValid(), row.message == nullptr ? 1 : 0);
    }
}

}  // namespace
