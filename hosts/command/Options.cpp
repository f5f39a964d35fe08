#include "Options.h"

namespace {

constexpr int kAllThatCome = 1 << 28;  // a positional takes arguments while it has fewer than it wants

std::string FaultOfEmpty(const std::string& value) {
    return value.empty() ? "is empty" : "";
}

}  // namespace

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
