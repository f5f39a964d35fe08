#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tests/FileBytes.h>
#include <tests/TempFolder.h>
#include <unistd.h>

#include <mailengine/support/platform/files/File.h>

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

// Writes bytes until a Write raises; taken counts those of the others. The failure of Write, else that of Close.
int WriteInChunks(const std::string& path, const std::string& bytes, std::size_t chunk, std::size_t& taken) {
    CFile file;
    int error = file.Open(path.c_str(), kWriting) ? 0 : errno;
    for (taken = 0; taken < bytes.size() && error == 0; taken += error == 0 ? chunk : 0)
        error = Raised([&] { file.Write(bytes.data() + taken, std::min(chunk, bytes.size() - taken)); });
    const int closeError = Raised([&] { file.Close(); });
    return error != 0 && closeError == 0 ? error : closeError;
}

// The result of body in a process of its own, whose limits and mounts are its own too; 128 and more for a signal.
int InChild(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child == 0) _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST(File, HoldsTheSameBytesAtEveryChunkSize) {
    const CTempFolder folder;
    const std::string path = folder / "file";
    for (const std::size_t size : {std::size_t{5}, 3 * kBuffer + 123})
        for (const std::size_t chunk :
             {std::size_t{1}, std::size_t{74}, kBuffer - 1, kBuffer, kBuffer + 1, 4 * kBuffer}) {
            std::size_t taken = 0;
            ASSERT_EQ(WriteInChunks(path, Bytes(size), chunk, taken), 0);
            CFile file;
            ASSERT_TRUE(file.Open(path.c_str(), kReading));
            std::string read, piece(chunk, 0);
            for (std::size_t got = chunk; got == chunk; read.append(piece, 0, got))  // less only at the end
                got = file.Read(piece.data(), static_cast<unsigned int>(chunk));
            EXPECT_TRUE(read == Bytes(size)) << size << " in chunks of " << chunk;
            struct stat status {};
            EXPECT_EQ(stat(path.c_str(), &status),
                      0);  // room that was not used is given back; some blocks hold extents
            EXPECT_LE(status.st_blocks * 512, static_cast<long>(size) + 3 * status.st_blksize);
        }
}

// A Write that came back means that its bytes are there; the one that crosses the limit raises, and no signal comes.
TEST(File, RaisesAtTheByteWhereTheSizeLimitLies) {
    const CTempFolder folder;
    const std::string path = folder / "out", bytes = Bytes(4 * kBuffer);
    for (const std::size_t border : {std::size_t{2}, kBuffer / 4, kBuffer, 2 * kBuffer})
        for (std::size_t limit = border - 2; limit <= border + 2; ++limit)
            for (const std::size_t chunk : {std::size_t{2}, std::size_t{74}, kBuffer - 1, kBuffer, 2 * kBuffer + 1}) {
                const auto write = [&] {
                    const rlimit sizes{limit, limit};
                    std::size_t taken = 0;
                    if (setrlimit(RLIMIT_FSIZE, &sizes) != 0) return 1;
                    if (WriteInChunks(path, bytes, chunk, taken) != EFBIG) return 2;
                    if (taken != limit / chunk * chunk) return 3;
                    return ReadWholeFile(path) == bytes.substr(0, limit) ? 0 : 4;
                };
                ASSERT_EQ(InChild(write), 0) << "limit " << limit << ", chunks of " << chunk;
            }
    // A limit that falls after room was promised is noticed at the latest by Close, which closes all the same.
    const auto lower = [&] {
        CFile file;
        if (!file.Open(path.c_str(), kWriting) || Raised([&] { file.Write("0", 1), file.Write("123456789", 9); }) != 0)
            return 1;
        const rlimit sizes{4, 4};
        if (setrlimit(RLIMIT_FSIZE, &sizes) != 0 || Raised([&] { file.Close(); }) != EFBIG) return 2;
        return Raised([&] { file.Write("x", 1); }) == EBADF ? 0 : 3;
    };
    EXPECT_EQ(InChild(lower), 0);
}

constexpr int kCannotMount = 99;

int WriteToSharedDisk(const CTempFolder& folder) {
    const bool isApart = unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    const std::string bytes = Bytes(6 * kBuffer);
    if (!isApart || mount("none", (folder / "").c_str(), "tmpfs", 0, "size=262144") != 0) return kCannotMount;
    CFile file;
    if (!file.Open((folder / "out").c_str(), kWriting)) return 1;
    if (Raised([&] { file.Write(bytes.data(), 1), file.Write(bytes.data() + 1, 73); }) != 0) return 2;
    WriteWholeFile(folder / "other", bytes);
    if (Raised([&] { file.Write(bytes.data() + 74, 8000); }) != 0) return 3;
    if (Raised([&] { file.Write(bytes.data(), bytes.size()); }) != ENOSPC || Raised([&] { file.Close(); }) != 0)
        return 4;
    return ReadWholeFile(folder / "out").starts_with(bytes.substr(0, 8074)) ? 0 : 5;
}

// What was promised stays so when others take the rest of the disk; the first byte behind it raises.
TEST(File, KeepsWhatItTookOnAFullDisk) {
    const CTempFolder folder;
    const int kept = InChild([&] { return WriteToSharedDisk(folder); });
    if (kept == kCannotMount) GTEST_SKIP() << "no right to mount a small disk; the size limit cases stand for it";
    EXPECT_EQ(kept, 0);
}

TEST(File, WritesThroughToAPipeAndWaitsForNone) {
    const CTempFolder folder;
    const std::string path = folder / "fifo";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    CFile pipe;
    EXPECT_FALSE(pipe.Open(path.c_str(), kReading));
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_TRUE(pipe.Open(path.c_str(), kWriting));
    pipe.Write("through", 7);
    char buffer[8];
    EXPECT_EQ(read(reader, buffer, sizeof(buffer)), 7);
    close(reader);
    EXPECT_EQ(Raised([&] { pipe.Write("x", 1); }), EPIPE);  // and no signal
    CFile memory;
    ASSERT_TRUE(memory.Open("/proc/self/mem", kReading));  // nothing can be read at address 0
    EXPECT_EQ(Raised([&] { memory.Read(buffer, 1); }), EIO);
    EXPECT_EQ(Raised([&] { memory.Write("x", 1); }), EBADF);
}

TEST(File, OpensWhatIsAFileAndFree) {
    const CTempFolder folder;
    const std::string path = folder / "file";
    CFile first, reader;
    ASSERT_TRUE(first.Open(path.c_str(), kWriting));
    first.Write("kept", 4);
    EXPECT_FALSE(CFile().Open(path.c_str(), kWriting));  // one writer at a time
    EXPECT_FALSE(reader.Open(path.c_str(), kReading));   // and no reader beside it
    EXPECT_TRUE(platform::LastOpenFoundFileLocked());
    EXPECT_FALSE(first.Open(path.c_str(), kReading));  // is open already
    first.Close();
    EXPECT_TRUE(reader.Open(path.c_str(), kReading));
    EXPECT_FALSE(first.Open(path.c_str(), kWriting));  // would empty what is being read
    std::filesystem::create_symlink("outside", folder / "dangling");
    std::filesystem::create_symlink("file", folder / "link");
    for (const char* const name : {"", "file", "dangling", "link"}) {
        EXPECT_FALSE(CFile().Open((folder / name).c_str(), kWriting | CFile::createNew)) << name;
        EXPECT_EQ(platform::LastOpenFoundPathTaken(), *name != 0) << name;
    }
    EXPECT_FALSE(platform::LastOpenFoundFileLocked() || std::filesystem::exists(folder / "outside"));
    EXPECT_EQ(ReadWholeFile(path), "kept");
    EXPECT_TRUE(CFile().Open((folder / "new").c_str(), kWriting | CFile::createNew));
    for (const unsigned int flags : {kReading, kWriting, kReading | CFile::modeWrite}) {
        EXPECT_FALSE(CFile().Open((folder / "").c_str(), flags));
        EXPECT_FALSE(CFile().Open(nullptr, flags));
    }
}

}  // namespace
