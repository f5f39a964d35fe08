// Text: where the code page 932 of the library becomes the toolkit's text. Nothing else here knows the code page.
// Stateless; any thread.
#pragma once

#include <wx/string.h>

#include <mailengine/support/platform/text/String.h>

namespace desktop {

// The characters of a text up to its NUL; U+FFFD for bytes that code page 932 gives none for.
wxString ToToolkit(const char* text);

}  // namespace desktop
