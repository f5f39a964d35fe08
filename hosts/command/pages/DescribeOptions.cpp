// Prints what the program's parser knows of itself as one JSON object, in the language of the locale. Manual pages and
// completions are made from it (pages.py), so they tell what --help tells. Built and run with the tree, not installed.
#include <CLI/CLI.hpp>
#include <clocale>
#include <iostream>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "HelpTexts.h"

namespace {

nlohmann::json Names(const std::set<CLI::Option*>& options) {
    nlohmann::json names = nlohmann::json::array();
    for (const CLI::Option* option : options)
        names.push_back(option->get_name());
    return names;
}

nlohmann::json Described(const CLI::Option& option) {
    nlohmann::json names = nlohmann::json::array();
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    const bool takesValue = option.get_items_expected_max() > 0;
    return {{"names", names},
            {"position", option.get_positional() ? option.get_name(true) : ""},
            {"value", takesValue ? option.get_type_name() : ""},
            {"help", option.get_description()},
            {"required", option.get_required()},
            {"many", option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll},
            {"excludes", Names(option.get_excludes())},
            {"needs", Names(option.get_needs())}};
}

nlohmann::json Described(const CLI::App& app) {
    nlohmann::json options = nlohmann::json::array();
    for (const CLI::Option* option : app.get_options()) {
        if (!option->get_group().empty()) options.push_back(Described(*option));  // no group: hidden
    }
    nlohmann::json commands = nlohmann::json::array();
    for (const CLI::App* command : app.get_subcommands({}))
        commands.push_back(Described(*command));
    return {{"name", app.get_name()},
            {"description", app.get_description()},
            {"footer", app.get_footer()},
            {"options", options},
            {"commands", commands}};
}

}  // namespace

int main() {
    std::setlocale(LC_CTYPE, "");
    std::setlocale(LC_MESSAGES, "");
    CLI::App program;
    const auto commands = AddCommands(program);
    TranslateHelp(program);
    std::cout << Described(program).dump(1) << '\n';
    return std::cout.flush() ? 0 : 1;
}
