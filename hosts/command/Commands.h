// Commands: the list of the program's commands, for the program itself and for the pages that describe it.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "Command.h"

// Says what the program is, and adds each command to it. The result must outlive the parse.
std::vector<std::unique_ptr<const CCommand>> AddCommands(CLI::App& program);
