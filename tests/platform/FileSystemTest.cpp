#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>

#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/files/FileSystem.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/system/System.h>

namespace {

namespace fs = std::filesystem;

// The names that a search finds, in native form; a directory's with a slash behind.
std::set<std::string> Found(const std::string& pattern) {
    std::set<std::string> names;
    platform::WIN32_FIND_DATAA data;
    const platform::HANDLE search = platform::FindFirstFileA(pattern.c_str(), data);
    if (search == platform::INVALID_HANDLE_VALUE) return names;
    do {
        const bool isDirectory = (data.dwFileAttributes & 0x10) != 0;
        names.insert(platform::ToNativePath(data.cFileName) + (isDirectory ? "/" : ""));
    } while (platform::FindNextFileA(search, data));
    EXPECT_TRUE(platform::FindClose(search));
    return names;
}

using Names = std::set<std::string>;

TEST(FileSystem, FindsByTheLastPartOfThePattern) {
    const CTempFolder folder;
    fs::create_directory(folder / "sub");
    fs::create_symlink("sub", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");
    WriteWholeFile(folder / "a.txt", "");
    WriteWholeFile(folder / "\xE8\xA1\xA8.txt", "");  // 表
    const std::pair<const char*, Names> rows[] = {
        {"*.*", {"./", "../", "sub/", "link", "dangling", "a.txt", "\xE8\xA1\xA8.txt"}},
        {"?.txt", {"a.txt", "\xE8\xA1\xA8.txt"}},
        {"\x95\x5C*", {"\xE8\xA1\xA8.txt"}},
        {"*n*l*", {"dangling"}},
        {"dangling", {"dangling"}},
        {"sub", {"sub/"}},
        {"sub\\", {}},
        {"sub\\*.*", {"./", "../"}},
        {"a.tx", {}},
    };
    for (const auto& [pattern, expected] : rows)
        EXPECT_EQ(Found(folder / pattern), expected) << pattern;
    EXPECT_EQ(Found(""), Names());
}

// As a document that clears its folder does: whatever the names are, each is deleted by what the search told.
TEST(FileSystem, DeletesEveryFileByTheNameThatTheSearchGave) {
    const CTempFolder folder;
    // The longest holds U+F783 U+F75C, the bytes of a katakana SO.
    std::istringstream list(
        "\xF0\x9F\x98\x80/a\\b/\xFF\xC3/\xEF\x9E\x80/\xE8\xA1\xA8/\xE3\x82\xBD/\xEF\x9E\x83\xEF\x9D\x9C/\xC2\xA5/\n/*/"
        "?");
    fs::create_directory(folder / "a");
    for (std::string name; std::getline(list, name, '/');)
        WriteWholeFile(folder / name, "");
    WriteWholeFile(folder / "a/b", "kept");
    EXPECT_EQ(Found(folder / "*.*").size(), 14U);
    platform::WIN32_FIND_DATAA data;
    const platform::HANDLE search = platform::FindFirstFileA((folder / "*.*").c_str(), data);
    do
        platform::DeleteFileA(CString((folder / "").c_str()) + data.cFileName);
    while (platform::FindNextFileA(search, data));
    platform::FindClose(search);
    EXPECT_EQ(Found(folder / "*.*"), Names({"./", "../", "a/"}));
    EXPECT_EQ(ReadWholeFile(folder / "a/b"), "kept");
}

TEST(FileSystem, RemovesWhatItIsAskedForAndNothingBehindALink) {
    const CTempFolder folder;
    const std::string made = folder / "\x83\x5C";  // ソ
    ASSERT_TRUE(platform::CreateDirectoryA(made.c_str(), nullptr));
    EXPECT_TRUE(fs::is_directory(folder / "\xE3\x82\xBD"));
    EXPECT_FALSE(platform::CreateDirectoryA(made.c_str(), nullptr));
    EXPECT_EQ(platform::GetLastError(), EEXIST);
    EXPECT_FALSE(platform::CreateDirectoryA((folder / "missing\\x").c_str(), nullptr));
    WriteWholeFile(folder / "file", "kept");
    fs::create_symlink("\xE3\x82\xBD", folder / "to-folder");
    fs::create_symlink("file", folder / "to-file");
    for (const char* const name : {"to-folder", "to-folder\\", "to-file", "file"})
        EXPECT_FALSE(platform::RemoveDirectoryA((folder / name).c_str())) << name;
    EXPECT_FALSE(platform::DeleteFileA(made.c_str()));
    EXPECT_TRUE(platform::DeleteFileA((folder / "to-file").c_str()));
    EXPECT_TRUE(platform::DeleteFileA((folder / "to-folder").c_str()));
    EXPECT_EQ(ReadWholeFile(folder / "file"), "kept");
    EXPECT_TRUE(platform::RemoveDirectoryA(made.c_str()));
    const std::string device = folder / "device";
    if (mknod(device.c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0) {  // for root only
        EXPECT_FALSE(platform::DeleteFileA(device.c_str()));
        EXPECT_TRUE(fs::exists(device));
    }
    for (const char* const path : {static_cast<const char*>(nullptr), ""})
        EXPECT_FALSE(platform::DeleteFileA(path) || platform::CreateDirectoryA(path, nullptr) ||
                     platform::RemoveDirectoryA(path));
}

}  // namespace
