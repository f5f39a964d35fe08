#include <mailengine/support/Resources.h>
#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/windows/WindowTypes.h>

namespace {

constexpr platform::DialogControl kControls[] = {
    {IDCANCEL, "button", texts::kCancel, 85, 36, 50, 14, 0x50010000},
    {resources::kProgressBar, "msctls_progress32", "Progress1", 17, 17, 186, 14, 0x50800000},
};

constexpr platform::StringResource kStrings[] = {{resources::kSocketLayerFailed, texts::kSocketLayerFailed}};

}  // namespace

// A caption, a modal frame and a font, but no system menu: without a close box Cancel is the only way out.
constinit const platform::DialogTemplate resources::kProgressDialogTemplate = {
    .id = kProgressDialog,
    .language = 0x0411,
    .style = 0x80C000C0,
    .extendedStyle = 0,
    .x = 0,
    .y = 0,
    .width = 219,
    .height = 57,
    .caption = texts::kDialogCaption,
    .fontPoints = 9,
    .fontName = texts::kDialogFont,
    .controls = kControls,
};

namespace {

constinit platform::ResourceModule g_module = {{&resources::kProgressDialogTemplate, 1}, kStrings};

// The library's presence in the registry, from its loading to its unloading.
const struct Registration {
    Registration() { platform::RegisterResources(g_module); }
    ~Registration() { platform::UnregisterResources(g_module); }
} g_registration;

}  // namespace
