// UsageFault: what is wrong with a command line, in this program's words. Stateless.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

// One line about the CLI::ParseError that is being handled. command is the one that was asked for, or the program, and
// words are the command line. What nobody knows is named before what is missing: a misspelt option is both.
std::string UsageFault(const CLI::App& command, const std::vector<std::string>& words);

// The same for a word that should be a command of program and is none.
std::string UnknownCommand(const CLI::App& program, const std::string& word);
