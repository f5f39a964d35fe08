// The library's resources: the template of the progress dialog and one string. They are registered with the platform
// layer while the library is loaded.
#pragma once

#include <mailengine/support/platform/windows/ResourceRegistry.h>

namespace resources {

inline constexpr int kProgressDialog = 168;
inline constexpr int kProgressBar = 1086;       // the bar in that dialog; its button is IDCANCEL
inline constexpr int kSocketLayerFailed = 101;  // for a host whose socket layer does not start

// The template of kProgressDialog. Whoever uses it brings the registration along into a statically linked program.
extern const platform::DialogTemplate kProgressDialogTemplate;

}  // namespace resources
