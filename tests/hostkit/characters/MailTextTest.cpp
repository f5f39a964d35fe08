// What a text that came out of a mail may become, on a screen and in a new mail.
#include <gtest/gtest.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <string>

namespace {

TEST(MailText, SpellsWhatIsNotSeenAndKeepsPictures) {
    const struct {
        std::string text;
        const char* shown;
    } kCases[] = {
        {"\u061C\u180E\U0001D173\u202E\u2028\u2029\u00AD\uFEFF",
         "\\u061C\\u180E\\u1D173\\u202E\\u2028\\u2029\\xAD\\uFEFF"},
        {std::string("\0\r\x1B\x7F", 4) + "\u0085\xFF", "\\x00\\x0D\\x1B\\x7F\\x85\\xFF"},
        {"葛\U000E0100城", "葛\U000E0100城"},  // a variant of the letter
        {"👩🏽\u200D💻👁\uFE0F\u200D🗨🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F",
         "👩🏽\u200D💻👁\uFE0F\u200D🗨🏴\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F"},
        {"a\u200Db👩\u200D\u200D👩 \u200D👩\u200D", "a\\u200Db👩\\u200D\\u200D👩 \\u200D👩\\u200D"},
        {"🏴\U000E0041\U000E007F👩\U000E0067\U000E0062\U000E0065\U000E007F",
         "🏴\\uE0041\\uE007F👩\\uE0067\\uE0062\\uE0065\\uE007F"},
        {"🏴\U000E0067\U000E0062\U000E0065", "🏴\\uE0067\\uE0062\\uE0065"},
    };
    for (const auto& test : kCases)
        EXPECT_EQ(hostkit::Shown(test.text), test.shown);
}

TEST(MailText, IsCarriedInItsOwnLines) {
    const std::string text = "\r\n a\u2028\r\n\tb\u0085c\x1B\x0B d\u200B\r";
    EXPECT_EQ(hostkit::Carried(text, hostkit::Extent::Line).View(), " a b c d");
    EXPECT_EQ(hostkit::Carried(text, hostkit::Extent::Letter).View(), "\r\n a\r\n\r\n\tb\r\nc\r\n d\r\n");
}

}  // namespace
