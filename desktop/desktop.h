// desktop.h: all that a host with windows of the toolkit may use, in one include. docs/window-systems.md shows it.
#pragma once

#include <desktop/Accessible.h>
#include <desktop/ToolkitWindows.h>
