// CProgressCtrl: a progress bar. It answers PBM_SETRANGE and PBM_SETPOS by way of SendMessageA.
#pragma once

#include <mailengine/support/platform/windows/Wnd.h>

class MAILENGINE_API CProgressCtrl : public CWnd {
protected:
    LRESULT DefWindowProcA(unsigned int message, WPARAM wParam, LPARAM lParam) override;
};
