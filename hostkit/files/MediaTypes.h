// MediaTypes: which extension the files of a media type bear on this system, by shared-mime-info's table. The first
// call reads it; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>
#include <string_view>

namespace hostkit {

// ".png" for "image/png", in small letters; empty for a type that the table does not know, or where there is none.
HOSTKIT_API std::string ExtensionForType(std::string_view type);

}  // namespace hostkit
