#include "CommandLine.h"

#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/InputFile.h>
#include <unistd.h>

#include "StandardFiles.h"

namespace {

constexpr char kStandard[] = "-";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::string NameOfInput(const std::string& path) {
    return path == kStandard ? hostkit::Words("standard input") : path;
}

std::string TextAt(const std::string& path) {
    if (path == kStandard) CheckStandardInput();
    std::string text = path == kStandard ? hostkit::ReadWhole(STDIN_FILENO, NameOfInput(path), hostkit::kMaxTextBytes)
                                         : hostkit::ReadWhole(path, hostkit::kMaxTextBytes);
    if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
    return text;
}

std::unique_ptr<hostkit::OutputTarget> TargetAt(const std::string& path, hostkit::Unkept unkept) {
    if (path == kStandard) CheckStandardOutput();
    if (path == kStandard)
        return std::make_unique<hostkit::OutputTarget>(STDOUT_FILENO, hostkit::Words("standard output"));
    return std::make_unique<hostkit::OutputTarget>(path, unkept);
}
