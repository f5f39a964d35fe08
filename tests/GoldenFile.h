// Golden files: byte-exact messages under tests/data.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tests/FileBytes.h>

// Compares bytes with tests/data/<name>; on a mismatch the new bytes are left in the current (build) folder.
inline void ExpectGolden(const std::string& name, const std::string& bytes) {
    const std::filesystem::path path = std::filesystem::path(MAILENGINE_TEST_DATA) / name;
    const std::string golden = ReadWholeFile(path);
    ASSERT_FALSE(golden.empty()) << path;
    EXPECT_EQ(Shown(bytes), Shown(golden)) << name;
    if (bytes != golden) WriteWholeFile(path.filename().string() + ".new", bytes);
}
