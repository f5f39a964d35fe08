// CWinApp: the application's event loop, step by step, in front of the installed CWindowSystem, whose contracts hold.
#pragma once

#include <mailengine/support/platform/base/Export.h>

class MAILENGINE_API CWinApp {
public:
    // Work for idle times. Not 0: it wants to be called again.
    int OnIdle(int count);
    // Takes one waiting message and dispatches it. 0: the program is to end.
    int PumpMessage();
};

// The application object, never null.
MAILENGINE_API CWinApp* AfxGetApp();

namespace platform {

// Not 0: a message waits for this thread. It is not taken.
MAILENGINE_API int PeekMessageA();

}  // namespace platform
