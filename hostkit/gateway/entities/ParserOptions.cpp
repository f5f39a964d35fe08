#include <hostkit/gateway/entities/ParserOptions.h>

namespace hostkit::gateway {
namespace {

GMimeParserOptions* MakeOptions() {
    g_mime_init();
    GMimeParserOptions* const options = g_mime_parser_options_new();
    g_mime_parser_options_set_allow_addresses_without_domain(options, TRUE);
    return options;
}

}  // namespace

GMimeParserOptions* Options() {
    static GMimeParserOptions* const options = MakeOptions();  // lives as long as GMime's own tables
    return options;
}

}  // namespace hostkit::gateway
