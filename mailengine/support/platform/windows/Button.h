// CButton: a button of a dialog. It has no operation of its own beyond those of every window.
#pragma once

#include <mailengine/support/platform/windows/Wnd.h>

class CButton : public CWnd {};
