#include <gtest/gtest.h>
#include <tuple>
#include <utility>

#include <mailengine/model/Address.h>
#include <mailengine/support/Texts.h>

namespace {

TEST(AddressText, FromTextSplitsNameAndAddress) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {" a@b ", "", " a@b "},
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
    for (const auto& [text, name, mailAddress] : rows) {
        CAddress address("group", "old", "old");
        address.FromText(text);
        EXPECT_EQ(address.GetDisplayName(), name) << text;
        EXPECT_EQ(address.GetMailAddress(), mailAddress) << text;
        EXPECT_EQ(address.GetGroupName(), "") << text;
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

TEST(AddressCheck, TellsTheFirstFault) {
    const std::pair<const char*, const char*> rows[] = {
        // no message: valid
        {"", texts::kAddressEmpty},
        {"\x8E\x52", texts::kAddressJapanese},
        {"a@\xB1", texts::kAddressJapanese},
        {"a", texts::kAddressMalformed},
        {"@b", texts::kAddressMalformed},
        {"a@", texts::kAddressMalformed},
        {"a@b@", nullptr},
        {" @ ", nullptr},
    };
    for (const auto& [address, fault] : rows) {
        CString message("untouched");
        EXPECT_EQ(CAddress::CheckAddress(address, message), fault == nullptr) << address;
        EXPECT_EQ(message, fault == nullptr ? "untouched" : fault) << address;
        EXPECT_EQ(CAddress("", "n", address).IsValid(), fault == nullptr);
    }
}

}  // namespace
