#include <mailengine/support/platform/windows/ProgressCtrl.h>
#include <mailengine/support/platform/windows/WindowSystem.h>

LRESULT CProgressCtrl::DefWindowProcA(unsigned int message, WPARAM wParam, LPARAM lParam) {
    CWindowSystem& system = CWindowSystem::Get();
    switch (message) {
        case PBM_SETRANGE:
            system.SetProgressRange(m_hWnd, static_cast<int>(lParam & 0xFFFF), static_cast<int>(lParam >> 16 & 0xFFFF));
            return 0;
        case PBM_SETPOS:
            system.SetProgressPosition(m_hWnd, static_cast<int>(wParam));
            return 0;
        default:
            return CWnd::DefWindowProcA(message, wParam, lParam);
    }
}
