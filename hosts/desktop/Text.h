// Text: the border between the UTF-8 of the kit and the toolkit's text, and the boxes that say it.
#pragma once

#include <cstdint>
#include <hostkit/characters/Words.h>
#include <string>
#include <vector>
#include <wx/string.h>

class wxWindow;

// The toolkit's form of UTF-8. What is not UTF-8, as a path may be, is shown by U+FFFD for each such byte.
wxString Shown(const std::string& utf8);
inline std::string Utf8(const wxString& text) {
    return text.utf8_string();
}

// A size for people, as the library shows it: up to 2 GiB.
std::string SizeShown(std::uintmax_t bytes);

// Boxes with one button. The text is UTF-8.
void Complain(wxWindow* owner, const std::string& text);
void Inform(wxWindow* owner, const std::string& text);
// A box with two or three answers, the first of which is the safe one that Enter gives. The result is the number of the
// answer, counted from 0; the last for Esc.
int Ask(wxWindow* owner, const std::string& text, const std::vector<std::string>& answers);
