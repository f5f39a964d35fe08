#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tests/platform/TempFolder.h>
#include <unistd.h>

#include <mailengine/support/platform/File.h>
#include <mailengine/support/platform/System.h>

namespace {

constexpr unsigned int kReading = 0x8040;
constexpr unsigned int kWriting = 0x9001;
constexpr std::size_t kBuffer = 64 * 1024;

std::string Bytes(std::size_t count) {
    std::string bytes(count, 0);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

// The number of the failure that operation raised, 0 for none.
int Raised(const std::function<void()>& operation) {
    try {
        operation();
        return 0;
    } catch (CFileException* exception) {
        const int error = exception->m_lOsError;
        exception->Delete();
        return error;
    }
}

// What happened to bytes written in chunks: how many of them a Write took, and the two failures.
struct Outcome {
    std::size_t taken = 0;
    int writeError = 0;
    int closeError = 0;
};

Outcome WriteInChunks(const std::string& path, const std::string& bytes, std::size_t chunk) {
    Outcome outcome;
    CFile file;
    if (!file.Open(path.c_str(), kWriting)) return {0, errno, 0};
    while (outcome.taken < bytes.size() && outcome.writeError == 0) {
        const std::size_t count = std::min(chunk, bytes.size() - outcome.taken);
        outcome.writeError = Raised([&] { file.Write(bytes.data() + outcome.taken, count); });
        if (outcome.writeError == 0) outcome.taken += count;
    }
    outcome.closeError = Raised([&] { file.Close(); });
    return outcome;
}

// Runs body in a process of its own, so that its limits and mounts are its own too. The result of body, or 128 and the
// signal that ended it.
int InChild(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST(FileWrite, IsTheSameAtEveryChunkSize) {
    const TempFolder folder;
    const std::string path = folder / "out";
    const std::string bytes = Bytes(5 * kBuffer + 123);
    for (const std::size_t chunk : {1UL, 74UL, kBuffer - 1, kBuffer, kBuffer + 1, 3 * kBuffer + 5, bytes.size()}) {
        const Outcome outcome = WriteInChunks(path, bytes, chunk);
        EXPECT_EQ(outcome.writeError + outcome.closeError, 0);
        EXPECT_TRUE(TempFolder::Read(path) == bytes) << "in chunks of " << chunk;
    }
    EXPECT_EQ(WriteInChunks(path, "short", 2).taken, 5U);
    EXPECT_EQ(TempFolder::Read(path), "short");
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_LE(status.st_blocks * 512, status.st_blksize);  // room that was not used is given back
}

// A Write that came back means that its bytes are there; the one that crosses the limit raises, and no signal comes.
TEST(FileWrite, RaisesAtTheByteWhereTheSizeLimitLies) {
    const TempFolder folder;
    const std::string path = folder / "out";
    const std::string bytes = Bytes(4 * kBuffer);
    for (const std::size_t border : {std::size_t{0}, kBuffer / 4, kBuffer, 2 * kBuffer, 3 * kBuffer})
        for (std::size_t limit = border < 3 ? 0 : border - 3; limit <= border + 3; ++limit)
            for (const std::size_t chunk : {std::size_t{2}, std::size_t{74}, kBuffer - 1, kBuffer, 2 * kBuffer + 1}) {
                const int result = InChild([&] {
                    const rlimit sizes{limit, limit};
                    if (setrlimit(RLIMIT_FSIZE, &sizes) != 0) return 1;
                    const Outcome outcome = WriteInChunks(path, bytes, chunk);
                    if (outcome.writeError != EFBIG || outcome.closeError != 0) return 2;
                    if (outcome.taken != limit / chunk * chunk) return 3;
                    return TempFolder::Read(path) == bytes.substr(0, limit) ? 0 : 4;
                });
                ASSERT_EQ(result, 0) << "limit " << limit << ", chunks of " << chunk;
            }
}

// A limit that falls after the room was promised is noticed at the latest by Close.
TEST(FileWrite, CloseRaisesWhenTheLastFlushFails) {
    const TempFolder folder;
    EXPECT_EQ(InChild([&] {
                  CFile file;
                  if (!file.Open((folder / "out").c_str(), kWriting)) return 1;
                  file.Write("0123456789", 10);
                  const rlimit sizes{4, 4};
                  if (setrlimit(RLIMIT_FSIZE, &sizes) != 0) return 2;
                  if (Raised([&] { file.Close(); }) != EFBIG) return 3;
                  return Raised([&] { file.Write("x", 1); }) == EBADF ? 0 : 4;  // closed all the same
              }),
              0);
    EXPECT_EQ(TempFolder::Read(folder / "out"), "0123");
}

int MountSmallDisk(const TempFolder& folder, const std::string& size) {
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.Path().c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

// Writes until the disk is full, by the system alone.
void FillDisk(const std::string& path) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT, 0600);
    const std::string block(4096, 'x');
    while (write(descriptor, block.data(), block.size()) > 0) {
    }
    close(descriptor);
}

constexpr int kCannotMount = 99;

int WriteToSmallDisk(const TempFolder& folder, std::size_t diskBytes, std::size_t chunk) {
    if (!MountSmallDisk(folder, std::to_string(diskBytes))) return kCannotMount;
    const std::string bytes = Bytes(diskBytes + 2 * kBuffer);
    const Outcome outcome = WriteInChunks(folder / "out", bytes, chunk);
    if (outcome.writeError != ENOSPC || outcome.closeError != 0) return 1;
    const std::string written = TempFolder::Read(folder / "out");
    if (written.size() < outcome.taken || written != bytes.substr(0, written.size())) return 2;
    return written.size() == diskBytes ? 0 : 3;  // no room is left unused
}

int KeepPromiseOnFullDisk(const TempFolder& folder) {
    if (!MountSmallDisk(folder, "256k")) return kCannotMount;
    CFile file;
    if (!file.Open((folder / "out").c_str(), kWriting)) return 1;
    std::string text = Bytes(74);
    file.Write(text.data(), text.size());
    FillDisk(folder / "other");
    std::size_t taken = 1;
    while (Raised([&] { file.Write(text.data(), text.size()); }) == 0)
        ++taken;
    if (taken < 2 || Raised([&] { file.Close(); }) != 0) return 2;
    const std::string written = TempFolder::Read(folder / "out");
    for (std::size_t i = 0; i < taken; ++i)
        if (written.compare(i * text.size(), text.size(), text) != 0) return 3;
    return 0;
}

TEST(FileWrite, KeepsWhatItTookOnAFullDisk) {
    const TempFolder folder;
    const int kept = InChild([&] { return KeepPromiseOnFullDisk(folder); });
    if (kept == kCannotMount) GTEST_SKIP() << "no right to mount a small disk; the size limit cases stand for it";
    EXPECT_EQ(kept, 0);
    for (const std::size_t pages : {1UL, 3UL, 4UL, 5UL, 15UL, 16UL, 17UL, 33UL, 300UL})
        for (const std::size_t chunk : {std::size_t{1}, std::size_t{74}, std::size_t{4096}, kBuffer, kBuffer + 1})
            EXPECT_EQ(InChild([&] { return WriteToSmallDisk(folder, pages * 4096, chunk); }), 0)
                << pages << " pages, chunks of " << chunk;
}

TEST(FileWrite, GoesThroughToDevicesAndPipes) {
    CFile full;
    ASSERT_TRUE(full.Open("/dev/full", kWriting));
    EXPECT_EQ(Raised([&] { full.Write("x", 1); }), ENOSPC);
    const TempFolder folder;
    const std::string path = folder / "fifo";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    CFile pipe;
    EXPECT_FALSE(pipe.Open(path.c_str(), kReading));  // and waits for no writer
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_TRUE(pipe.Open(path.c_str(), kWriting));
    pipe.Write("through", 7);
    char buffer[8] = {};
    EXPECT_EQ(read(reader, buffer, sizeof(buffer)), 7);
    close(reader);
    EXPECT_EQ(Raised([&] { pipe.Write("x", 1); }), EPIPE);  // and no signal
}

TEST(FileRead, IsTheSameAtEveryCount) {
    const TempFolder folder;
    const std::string bytes = Bytes(3 * kBuffer + 77);
    TempFolder::Write(folder / "in", bytes);
    for (const std::size_t count : {1UL, 540UL, kBuffer - 1, kBuffer, kBuffer + 1, bytes.size() + 1}) {
        CFile file;
        ASSERT_TRUE(file.Open((folder / "in").c_str(), kReading));
        std::string read, piece(count, 0);
        unsigned int got = 0;
        do {
            got = file.Read(piece.data(), static_cast<unsigned int>(count));
            read.append(piece, 0, got);
        } while (got == count);  // fewer bytes only at the end
        EXPECT_TRUE(read == bytes) << "by " << count;
        EXPECT_EQ(file.Read(piece.data(), 1), 0U);
        EXPECT_EQ(Raised([&] { file.Write("x", 1); }), EBADF);
    }
}

TEST(FileRead, RaisesWhenTheSystemCannotRead) {
    CFile file;
    char byte = 0;
    EXPECT_EQ(Raised([&] { file.Read(&byte, 1); }), EBADF);
    ASSERT_TRUE(file.Open("/proc/self/mem", kReading));  // nothing can be read at address 0
    EXPECT_EQ(Raised([&] { file.Read(&byte, 1); }), EIO);
}

TEST(FileOpen, RefusesWhatIsNoFile) {
    const TempFolder folder;
    CFileException error;
    for (const unsigned int flags : {kReading, kWriting}) {
        EXPECT_FALSE(CFile().Open(folder.Path().c_str(), flags, &error));
        EXPECT_EQ(error.m_lOsError, EISDIR);
        EXPECT_FALSE(CFile().Open(nullptr, flags, &error));
        EXPECT_EQ(error.m_lOsError, ENOENT);
    }
    EXPECT_FALSE(CFile().Open((folder / "x").c_str(), CFile::modeWrite));  // no set of flags that is known
    EXPECT_FALSE(std::filesystem::exists(folder / "x"));
}

TEST(FileOpen, CreatesANewFileOnlyWhereNothingStands) {
    const TempFolder folder;
    TempFolder::Write(folder / "file", "kept");
    std::filesystem::create_directory(folder / "folder");
    std::filesystem::create_symlink("outside", folder / "dangling");
    std::filesystem::create_symlink("file", folder / "link");
    for (const char* const name : {"file", "folder", "dangling", "link"}) {
        EXPECT_FALSE(CFile().Open((folder / name).c_str(), kWriting | CFile::createNew)) << name;
        EXPECT_TRUE(platform::LastOpenFoundPathTaken()) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "outside"));
    EXPECT_EQ(TempFolder::Read(folder / "file"), "kept");
    EXPECT_FALSE(CFile().Open((folder / "missing\\x").c_str(), kWriting | CFile::createNew));
    EXPECT_FALSE(platform::LastOpenFoundPathTaken());
    EXPECT_TRUE(CFile().Open((folder / "new").c_str(), kWriting | CFile::createNew));
}

TEST(FileOpen, LetsOneWriterAtATimeIn) {
    const TempFolder folder;
    const std::string path = folder / "out";
    CFile first, reader;
    ASSERT_TRUE(first.Open(path.c_str(), kWriting));
    first.Write("first", 5);
    EXPECT_FALSE(CFile().Open(path.c_str(), kWriting));
    EXPECT_TRUE(reader.Open(path.c_str(), kReading));
    EXPECT_FALSE(first.Open(path.c_str(), kReading));  // is open already
    first.Close();
    EXPECT_EQ(TempFolder::Read(path), "first");
    EXPECT_TRUE(CFile().Open(path.c_str(), kWriting));
}

}  // namespace
