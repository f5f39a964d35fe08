// ParserOptions: how GMime reads fields for the gateway. Made by the first call and never changed, so any thread.
#pragma once

#include <gmime/gmime.h>

namespace hostkit::gateway {

GMimeParserOptions* Options();

}  // namespace hostkit::gateway
