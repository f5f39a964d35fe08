// HelpTexts: what --help says, in the user's language.
#pragma once

#include <CLI/CLI.hpp>

// Translates the descriptions of the program, its commands and their options, and the labels that the parser puts
// around them. Commands give them to the parser in English, as literals; scripts/translations finds them there. To be
// called once, when all commands are added.
void TranslateHelp(CLI::App& program);
