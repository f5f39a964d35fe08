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

void TranslateTexts(CLI::App& app) {
    app.description(Words(app.get_description().c_str()));
    app.footer(Words(app.get_footer().c_str()));
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
