// Export.h: marks what a host may link against; all else stays hidden inside the shared library.
#pragma once

#define DESKTOP_API __attribute__((visibility("default")))
