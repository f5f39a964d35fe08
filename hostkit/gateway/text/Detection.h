// Detection: which charset the bytes of a text can be, where nobody says, or says wrong. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit::gateway {

// A name for ToUtf8. A Japanese reading that is valid and likely is never beaten by a Western one: short Japanese texts
// look like Latin letters with accents to what goes by frequencies.
std::string DetectCharset(std::string_view bytes);

}  // namespace hostkit::gateway
