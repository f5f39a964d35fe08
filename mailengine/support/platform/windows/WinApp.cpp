#include <mailengine/support/platform/windows/WinApp.h>
#include <mailengine/support/platform/windows/WindowSystem.h>

int CWinApp::OnIdle(int count) {
    return CWindowSystem::Get().OnIdle(count);
}

int CWinApp::PumpMessage() {
    return CWindowSystem::Get().PumpMessage();
}

CWinApp* AfxGetApp() {
    static CWinApp app;
    return &app;
}

int platform::PeekMessageA() {
    return CWindowSystem::Get().MessageWaits();
}
