// Export.h: marks what a host may link against; all else stays hidden inside its shared library.
#pragma once

#define MAILENGINE_API __attribute__((visibility("default")))
