#include "HelpTexts.h"

#include <hostkit/characters/Words.h>

using hostkit::Marked;
using hostkit::Words;

namespace {

// What the parser puts around options itself, by the name under which it does so.
struct Label {
    const char* key;
    const char* text;
};
constexpr Label kLabels[] = {
    {"Usage", Marked("Usage")},           {"OPTIONS", Marked("OPTIONS")},     {"SUBCOMMAND", Marked("COMMAND")},
    {"Positionals", Marked("Arguments")}, {"REQUIRED", Marked("(required)")}, {"Needs", Marked("with")},
    {"Excludes", Marked("not with")},
};

constexpr const char* kExitStatuses = Marked(
    "Exit status: 0 done, 64 the command line is wrong, 65 what was given cannot be used, 66 a file cannot be\n"
    "read, 68 the mail server has no machine, 69 the mail was refused, 71 this machine lacks something, 73 a\n"
    "file cannot be made or replaced, 74 writing failed, 75 a later try may work, 76 the mail may have been\n"
    "sent and a second try may double it, 77 this is not allowed, 78 the settings are wrong, 130 cancelled.");

void TranslateTexts(CLI::App& app) {
    app.description(Words(app.get_description().c_str()));
    const std::string footer = Words(app.get_footer().c_str());
    app.footer(footer + (footer.empty() ? "" : "\n") + Words(kExitStatuses));
    for (CLI::Option* option : app.get_options()) {
        const bool isHelp = option == app.get_help_ptr();
        option->description(Words(isHelp ? Marked("Print this help and exit") : option->get_description().c_str()));
        if (!option->get_group().empty()) option->group(Words("Options"));  // without a group it is hidden
    }
}

}  // namespace

void TranslateHelp(CLI::App& program) {
    for (const Label& label : kLabels)
        program.get_formatter()->label(label.key, Words(label.text));
    TranslateTexts(program);
    for (CLI::App* command : program.get_subcommands({})) {
        command->group(Words("Commands"));
        TranslateTexts(*command);
    }
}
