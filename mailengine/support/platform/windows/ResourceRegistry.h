// The resources of the process: dialog templates and strings that each library registers when it is loaded and takes
// out when it is unloaded. All of it is constant data of the library that registered it; nothing is copied. Libraries
// are loaded and unloaded on the user-interface thread, which is also the one that looks resources up.
#pragma once

#include <cstdint>
#include <span>

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/text/String.h>

namespace platform {

// One control of a dialog. Texts are code page 932; places and sizes are dialog units (a quarter of a character's
// width, an eighth of its height), for a system that draws in pixels to scale and for others to pass over.
struct DialogControl {
    int id;
    const char* windowClass;  // "button", "msctls_progress32"
    const char* text;
    int x, y, width, height;
    std::uint32_t style;
};

struct DialogTemplate {
    int id;
    std::uint16_t language;
    std::uint32_t style, extendedStyle;
    int x, y, width, height;
    const char* caption;
    int fontPoints;
    const char* fontName;
    std::span<const DialogControl> controls;  // in tab order
};

struct StringResource {
    int id;
    const char* text;  // code page 932
};

// What one library brings. The object and all that it points to stay in place from Register to Unregister.
struct ResourceModule {
    std::span<const DialogTemplate> dialogs;
    std::span<const StringResource> strings;
    ResourceModule* next = nullptr;  // the registry's
};

// Adds a module, which is lent. Of two resources with one number the one registered last is found.
MAILENGINE_API void RegisterResources(ResourceModule& module);
// Takes the module out. One that is not registered changes nothing.
MAILENGINE_API void UnregisterResources(ResourceModule& module);

// The dialog template with that number, null if no loaded library has one. Valid until its library is unloaded.
MAILENGINE_API const DialogTemplate* FindDialogTemplate(int id);
// Puts the string with that number into text. 0: no loaded library has one; text stays as it was.
MAILENGINE_API int LoadString(int id, CString& text);

}  // namespace platform
