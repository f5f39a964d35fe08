#include <bench/Bench.h>
#include <bench/Files.h>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <tests/TempFolder.h>
#include <unistd.h>
#include <vector>

namespace bench {

const std::string& Folder() {
    static const CTempFolder folder("/dev/shm");
    return folder.Native().native();
}

std::string Folder(const std::string& name) {
    std::string path = Folder() + "/" + name;
    std::filesystem::create_directory(path);
    return path;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    Require(file.good(), "no room for " + path);
}

void CopyFile(const std::string& from, const std::string& to) {
    const int source = open(from.c_str(), O_RDONLY);
    const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    std::vector<char> piece(64 * 1024);
    for (ssize_t got; (got = read(source, piece.data(), piece.size())) != 0;)
        Require(got > 0 && write(target, piece.data(), static_cast<std::size_t>(got)) == got, "cannot copy " + from);
    close(source);
    close(target);
}

double TimeToMake(const std::string& path, const std::function<void()>& run) {
    const double seconds = ProcessorTime(run);
    std::filesystem::remove(path);
    return seconds;
}

}  // namespace bench
