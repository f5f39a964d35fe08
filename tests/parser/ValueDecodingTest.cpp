#include "Reader.h"

namespace {

constexpr char kA[] = "\x82\xA0";  // あ

TEST(EncodedWords, DecodeWhereverTheyStand) {
    Check({{"=?iso-2022-jp?B?GyRCJCIbKEI=?=", kA},
           {"=?iso-2022-jp?B?GyRCJCIbKEI=?= =?x?X?y?=", std::string(kA) + " y"},
           {"=?iso-2022-jp?Q?=1B$B$=22=1B(B?=", kA},  // begins with "=" and ends at its "?=" alone
           {"=?x?B?QQBC?=", "A"},                     // ends at its NUL
           {"=?x?B?Q?=y", "y"},                       // refused: one character
           {"=?x?X?a?= =?x?X", "a x?X"}},
          [](const std::string& value) { return Text(Reader().DecodeFieldValue(CString(value))); });
}

TEST(ContentType, SplitsAtTheFirstSemicolonAndHasDefaults) {
    Check({{"X: y\n\nContent-Type: a/b\n", "text/plain|charset=us-ascii|-7"},
           {"Content-Type: text/plain ;\t format=flowed\n\n", "text/plain|format=flowed|43"},
           {"Content-Type: a/b; c=d; e=\n =?x?X?f?=\n\n", "a/b|c=d; e=f|40"},
           {"Content-Type: a/b", "text/plain|charset=us-ascii|0"}},
          [](const std::string& text) {
              CString type = "old", parameters = "old";
              int next = -7;
              EXPECT_EQ(Reader().GetContentType(Mail(text), 0, type, parameters, &next), 1);
              return Text(type) + "|" + Text(parameters) + "|" + Joined({next});
          });
}

TEST(Parameters, AreTakenByTheirExactName) {
    Check({{"NAME=\"abc\"; charset=x", "abc"},
           {"name = \"abc\"", ""},
           {"filename=x; name=y", "y"},
           {"name=; name=y", ""},  // the first one counts
           {"name=a\" ; name=y", "a"},
           {"name=\"a;b.txt\"", "a"},
           {"name=\"", ""},
           {" ;; name= \" a\\\"b \" ", " a\\\"b "}},
          [](const std::string& parameters) { return Text(Reader().GetAttrValue(CString(parameters), "name")); });
}

TEST(Parameters, JoinNumberedPieces) {
    std::string pieces, value;
    for (int i = 0; i < 1200; ++i) {
        pieces = "; name*" + std::to_string(i) + "*=" + std::to_string(i) + pieces;
        value += std::to_string(i);
    }
    Check({{"name*0*=iso-2022-jp''%1B%24B%24%22; name*1*=%1B%28B", kA},
           {"name*1*=%1B%28B; NAME*0*=ISO-2022-JP''%1B%24B%24%22", kA},
           {"name*0*=utf-8''%41; name*1*=\"b\"", "utf-8''%41b"},
           {"name*0*=a; name*0*=x; name*2*=c", "a"},
           {"name*0*=a; name*1*=\"\"; name*2*=c", "a"},
           {"name*00*=a; name*0=b; name*=c; name*-0*=d; name*+0*=e; name**=f; name*1*=g", ""},
           {pieces, value}},
          [](const std::string& text) { return Text(Reader().GetAttrValue_MultiLine(CString(text), "name")); });
}

// The result and the bytes of a buffer of size; what lies behind it must stay.
std::string Decoded(const std::string& text, const char* encoding, const char* charset, unsigned int size) {
    std::string buffer(size + 4, '#');
    unsigned int written = 99;
    auto* const bytes = reinterpret_cast<unsigned char*>(buffer.data());
    const int result = Reader().Decode(CString(text), encoding, charset, bytes, size, written);
    EXPECT_EQ(buffer.substr(size), "####") << text;
    EXPECT_EQ(buffer.find_first_not_of('\0', written), size) << "a NUL and zeros behind the bytes";
    return Joined({result}) + buffer.substr(0, written);
}

TEST(Decoding, PicksTheDecoderAndFillsTheBuffer) {
    EXPECT_EQ(Decoded("QQBC", "BASE64", "utf-8", 5), std::string("1A\0B", 4));
    EXPECT_EQ(Decoded("a=41\xFF", "Quoted-Printable", "", 6), "1aA\xFF");
    EXPECT_EQ(Decoded("a%41=41", "h", "", 8), "1aA=41");
    EXPECT_EQ(Decoded("GyRCJCIbKEI=", "B", "ISO-2022-JP", 13), std::string("1") + kA);
    EXPECT_EQ(Decoded("\x1B$B$\"\x1B(B", "", "iso-2022-jp-2", 9), "1\x1B$B$\"\x1B(B");
    EXPECT_EQ(Decoded("Q", "B", "", 2), "0");
    for (const char* encoding : {"B", "Q", "H", "7bit"})
        EXPECT_EQ(Decoded("QUJD", encoding, "iso-2022-jp", 3), "0") << encoding;
}

}  // namespace
