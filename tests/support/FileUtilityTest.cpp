#include <array>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>

#include <mailengine/support/FileUtility.h>

namespace {

#define BYTES "\x83o\x83\x43\x83g"               // バイト
#define FILE_TYPE " \x83t\x83@\x83\x43\x83\x8B"  // ファイル

TEST(FileUtility, TakesPathsApart) {
    const std::array<const char*, 5> rows[] = {
        {nullptr, "", "", "", ""},
        {"C:\\a.TxT", "C:", "a.TxT", "TxT", "TXT" FILE_TYPE},
        {"C:\\x.y\\", "C:\\x.y", "", "", ""},
        {"x.y\\name", "x.y", "name", "", ""},
        {"a.", "", "a.", "", ""},
        {".profile", "", ".profile", "profile", "PROFILE" FILE_TYPE},
        {"a.tar.gz", "", "a.tar.gz", "gz", "GZ" FILE_TYPE},
        {"a/b.c", "", "a/b.c", "c", "C" FILE_TYPE},
        {"\x83\x5C\\\x95\x5C.\x83\x61z", "\x83\x5C", "\x95\x5C.\x83\x61z", "\x83\x61z", "\x83\x61Z" FILE_TYPE},
    };
    for (const auto& [path, parent, name, extension, type] : rows) {
        EXPECT_EQ(CFileUtility::GetParentPath(path), parent);
        EXPECT_EQ(CFileUtility::GetFileNameFromPath(path), name);
        EXPECT_EQ(CFileUtility::GetFileExt(path), extension);
        EXPECT_EQ(CFileUtility::GetMimeType(path), type);
    }
}

TEST(FileUtility, ShowsSizesByTheFirstUnitThatFits) {
    std::string shown;
    for (const std::int32_t size : {INT32_MIN, 1023, 1024, 1536, 1048575, 1048576, 1073741823, 1073741824, INT32_MAX})
        shown.append(CFileUtility::SizeAutoUnit(size)).append(" ");
    EXPECT_EQ(shown, "-2147483648" BYTES " 1023" BYTES " 1KB 1KB 1023KB 1.00MB 1024.00MB 1.00GB 2.00GB ");
}

TEST(FileUtility, AsksForFiles) {
    const CTempFolder folder;
    const std::string path = folder / "a.bin";
    std::filesystem::create_directory(folder / "sub");
    WriteWholeFile(path, std::string(1536, 'x'));
    EXPECT_EQ(CFileUtility::GetFileSizeString(path.c_str(), 0), "1536" BYTES);
    EXPECT_EQ(CFileUtility::GetFileSizeString(path.c_str(), 2), "1KB");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 32);
    EXPECT_EQ(CFileUtility::GetFileSize(path.c_str()), INT32_MAX);
    EXPECT_EQ(CFileUtility::GetFileSize((folder / "none").c_str()), 0);
    EXPECT_EQ(CFileUtility::GetFileSize((folder / "sub").c_str()), 0);
    EXPECT_EQ(CFileUtility::Exists((folder / "*.b?n").c_str()), 1);
    EXPECT_EQ(CFileUtility::Exists((folder / "sub").c_str()), 1);
    EXPECT_EQ(CFileUtility::Exists(nullptr), 0);
    EXPECT_NE(CFileUtility::DeleteFileA(path.c_str()), 0);
    EXPECT_EQ(CFileUtility::DeleteFileA(path.c_str()), 0);
}

TEST(FileUtility, MakesTextsSafeAsFileNames) {
    CString name("..\\a/b:c,d;e*f?g\"h<i>j|k _\t");
    CFileUtility::ReplaceProhibitedWords(name);
    EXPECT_EQ(name, ".._a_b_c_d_e_f_g_h_i_j_k _\t");
    CString japanese("\x83\x5C\x83|\x95\x5C");  // second bytes of a backslash and a bar
    CFileUtility::ReplaceProhibitedWords(japanese);
    EXPECT_EQ(japanese, "\x83\x5C\x83|\x95\x5C");
    CString comment("#"), indented(" #"), empty;
    EXPECT_EQ(CFileUtility::IsCommentLine(comment), 1);
    EXPECT_EQ(CFileUtility::IsCommentLine(indented) + CFileUtility::IsCommentLine(empty), 0);
}

}  // namespace
