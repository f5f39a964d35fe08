// MediaTypes: which extension the files of a media type bear on this system, and which type those of an extension are,
// by shared-mime-info's table. The first call reads it; any thread.
#pragma once

#include <hostkit/characters/Export.h>
#include <string>
#include <string_view>

namespace hostkit {

// ".png" for "image/png", in small letters; empty for a type that the table does not know, or where there is none.
HOSTKIT_API std::string ExtensionForType(std::string_view type);

// "image/png" for "x.PNG" or ".png"; "application/octet-stream" where the table knows no extension at the end.
HOSTKIT_API std::string TypeForName(std::string_view name);

}  // namespace hostkit
