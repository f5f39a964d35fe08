// Options: rules of the command line that hold for every command. A value is taken as it stands, "[a,b]" and "{}"
// included: the parser's own syntax for lists would name other files than those that were given. Stateless.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace options {

// An empty value is refused, by the option's name: it comes from a variable of a shell that is not set, and would mean
// something else than leaving the option out.
CLI::Option* Filled(CLI::Option* option);

// Says what is wrong with a number that counts from 1; empty: nothing.
std::string FaultOfCount(const std::string& value);

// An option that can be given many times, with one value each.
template <class Value>
CLI::Option* AddMany(CLI::App& command, const char* name, std::vector<Value>& values, const char* help) {
    return command.add_option(name, values, help)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// FILE, the one message or the many that stand behind the options.
CLI::Option* AddFile(CLI::App& command, std::string& file, const char* help);
CLI::Option* AddFiles(CLI::App& command, std::vector<std::string>& files, const char* help);

// --strict: messages are read by the engine alone.
void AddStrict(CLI::App& command, bool& strict);

}  // namespace options
