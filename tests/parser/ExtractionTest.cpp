#include <filesystem>
#include <set>
#include <tests/TempFolder.h>

#include <mailengine/encoding/Base64.h>

#include "Reader.h"

namespace fs = std::filesystem;

namespace {

using Names = std::set<std::string>;

Names NamesIn(const CTempFolder& folder) {
    Names names;
    for (const auto& entry : fs::directory_iterator(folder.Native()))
        names.insert(entry.path().filename().string());
    return names;
}

std::string Part(const std::string& name, const std::string& data, const std::string& encoding = "7bit") {
    return "\n--b\nContent-Type: a/b; name=\"" + name + "\"\nContent-Transfer-Encoding: " + encoding + "\n\n" + data;
}

std::string AttachedMail(const std::string& subject, const std::string& parameters = "") {
    return "\n--b\nContent-Type: message/rfc822" + parameters + "\n\nSubject: " + subject + "\nMIME-Version: 1.0\n\nx";
}

CString Message(const std::string& parts) {
    return Mail("MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n" + parts + "\n--b--\n");
}

TEST(Extraction, GivesEachFileAFreeNameInTheFolder) {
    const Rows rows = {{"a.txt", "a.txt"},
                       {"a.txt", "a.txt_2"},
                       {"..", ".._1"},
                       {".", "._1"},
                       {"..\\..\\x/y:z", ".._.._x_y_z"},
                       {"\x83\x5C.txt", "\xE3\x82\xBD.txt"},  // ソ: its trail byte is no backslash
                       {"a.txt", "a.txt_3"},
                       {"=?x?Q?=0D=0A=1B?=", "\r\n\x1B"},
                       {"\xFF", "\xEF\x9F\xBF"}};
    CTempFolder folder;
    fs::create_symlink("nowhere", folder.Native() / "a.txt_1");
    std::string parts;
    Names expected{"a.txt_1"};
    for (const auto& [name, file] : rows) {
        parts += Part(name, file);
        expected.insert(file);
    }
    const Read read(Message(parts), folder.Path(), 0);
    EXPECT_EQ(read.files.size(), rows.size());
    EXPECT_EQ(NamesIn(folder), expected) << "nothing was written through the link";
    for (const auto& [name, file] : rows)
        EXPECT_EQ(ReadWholeFile(folder.Native() / file), Text(Mail(file)));
    EXPECT_EQ(read.files.at(4).Name, ".._.._x_y_z");
    EXPECT_EQ(read.files.at(5).Path, folder.Path("\x83\x5C.txt"));
}

TEST(Extraction, FindsAFreeNameForManyOfOneName) {
    CTempFolder folder;
    const Read read(Message(Repeated(Part("a", "x") + AttachedMail("..\\s"), 100)), folder.Path(), 0);
    ASSERT_EQ(read.files.size(), 200u);
    EXPECT_EQ(read.files[198].Path, folder.Path("a_99"));
    EXPECT_EQ(read.files[199].Path, folder.Path(".._s_99.eml"));
}

// Files are decoded piece by piece; the whole text, decoded at once, is what they must hold.
TEST(Extraction, DecodesAsTheWholeTextWould) {
    std::string lines, broken, quoted, escapes;
    for (int i = 0; i < 3000; ++i) {
        lines += Repeated("QUJD", 18) + "\n";
        broken += std::to_string(i) + "QUJ\n" + (i % 3 ? "UJ\n" : "!==");
        quoted += std::to_string(i) + "=E3=81=82=\nab=4=\n=4\nc==41%\n" + (i % 5 ? "=\r=" : "plain ");
        escapes += "%41%4%%\n" + std::to_string(i);
    }
    for (const std::string& text : {lines, broken, quoted, escapes, Repeated("=", 200000), std::string("QQ"),
                                    std::string(), std::string("\n"), lines.substr(0, 64 * 1024 - 800)})
        for (const char* encoding : {"base64", "quoted-printable", "H", "8bit"}) {
            const bool converts = text == quoted;
            CTempFolder folder;
            const Read read(Message(Part(converts ? "n\"; charset=\"iso-2022-jp" : "n", text, encoding)), folder.Path(),
                            0);
            const CString wire = Mail(text);
            std::string whole(wire.View().size() + 1, '\0');
            unsigned int size = 0;
            Reader().Decode(wire, encoding, converts ? "iso-2022-jp" : "",
                            reinterpret_cast<unsigned char*>(whole.data()), static_cast<unsigned int>(whole.size()),
                            size);
            EXPECT_EQ(read.result, 1);
            EXPECT_TRUE(ReadWholeFile(folder.Native() / "n") == whole.substr(0, size))
                << encoding << text.substr(0, 40);
        }
}

TEST(Extraction, FailsWithoutATrace) {
    CTempFolder folder;
    const CString missing = folder.Path("missing"), half = folder.Path() + "\x81";  // half would swallow the backslash
    const std::string longName(256, 'n');
    const std::vector<std::tuple<std::string, CString, std::string>> rows = {
        {Part(longName, "x"), folder.Path(), longName},
        {Part("n", "x"), missing, "n"},
        {Part("n", "x"), "", "n"},
        {Part("n", "x"), half, "n"}};
    for (const auto& [parts, path, name] : rows) {
        const Read read(Message(parts), path, 0);
        EXPECT_EQ(read.result, 0) << parts;
        EXPECT_NE(read.summary.Find(name.c_str()), -1) << parts;
        EXPECT_TRUE(read.files.empty());
    }
    EXPECT_EQ(NamesIn(folder), Names());
    EXPECT_EQ(Read(Message(Part("n", "x") + Part("", "x")), folder.Path(), 0).result, 0);
    EXPECT_EQ(NamesIn(folder), Names{"n"}) << "what was extracted before the failure stays";
}

}  // namespace
