// OneLine: a text of the library for the user, which may have many lines, as the one line that an error is.
#pragma once

#include <string>

#include <mailengine/support/platform/text/String.h>

// The UTF-8 of a text inside, each run of line ends as a blank, none at the end.
std::string OneLine(const CString& inside);
