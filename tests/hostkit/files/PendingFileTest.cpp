#include <gtest/gtest.h>
#include <hostkit/files/NewFile.h>
#include <hostkit/files/WorkFolder.h>
#include <sys/wait.h>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>
#include <unistd.h>

namespace {

// What a signal's handler does, in a process that then ends without a destructor.
TEST(PendingFile, GoesWithAProgramThatASignalEnds) {
    const CTempFolder folder;
    setenv("TMPDIR", folder.Native().c_str(), 1);
    const pid_t child = fork();
    if (child == 0) {
        { const hostkit::WorkFolder gone; }
        const hostkit::WorkFolder work;
        const hostkit::WorkFolder second;
        for (int i = 0; i < 300; ++i)
            WriteWholeFile(work.Path() / std::to_string(i), "x");
        hostkit::NewFile file(folder / "whole", "whole", nullptr, hostkit::Unkept::Refuse);
        file.TakePlace();
        const hostkit::NewFile half(folder / "half", "half", nullptr, hostkit::Unkept::Refuse);
        hostkit::RemovePendingFiles();
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    unsetenv("TMPDIR");
    ASSERT_EQ(status, 0);
    for (const auto& entry : std::filesystem::directory_iterator(folder.Native()))
        EXPECT_EQ(entry.path().filename(), "whole");
    EXPECT_TRUE(std::filesystem::exists(folder / "whole"));
}

}  // namespace
