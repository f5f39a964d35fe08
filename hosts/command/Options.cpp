#include "Options.h"

#include <charconv>
#include <hostkit/characters/Words.h>

namespace {

constexpr int kAllThatCome = 1 << 28;  // a positional takes arguments while it has fewer than it wants

std::string FaultOfEmpty(const std::string& value) {
    return value.empty() ? hostkit::Words("is empty") : "";
}

}  // namespace

std::string options::FaultOfCount(const std::string& value) {
    std::size_t number = 0;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    return read.ec == std::errc() && read.ptr == end && number > 0
               ? ""
               : hostkit::Words("'{1}' is no number from 1 up", value);
}

CLI::Option* options::Filled(CLI::Option* option) {
    return option->check(FaultOfEmpty, "");
}

CLI::Option* options::AddFile(CLI::App& command, std::string& file, const char* help) {
    return Filled(command.add_option("FILE", file, help));
}

void options::AddStrict(CLI::App& command, bool& strict) {
    command.add_flag("--strict", strict, "Read with the engine alone: ISO-2022-JP mail of its own dialect, exactly");
}

CLI::Option* options::AddFiles(CLI::App& command, std::vector<std::string>& files, const char* help) {
    return Filled(command.add_option("FILE", files, help))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->expected(kAllThatCome, -1)
        ->allow_extra_args(false);
}
