#include <algorithm>
#include <desktop/FileChoice.h>
#include <desktop/ProgressBar.h>
#include <desktop/SocketWatch.h>
#include <desktop/TemplateDialog.h>
#include <desktop/Text.h>
#include <desktop/ToolkitWindows.h>
#include <optional>
#include <wx/app.h>
#include <wx/msgdlg.h>

namespace desktop {

namespace {

using std::chrono::milliseconds;

// The library asks some thousand times a second, which as many looks at the display's connection would slow down a good
// deal. A press is still seen at once.
constexpr milliseconds kPause{10};
// The toolkit counts work that it does when idle among what waits, and so does a handler that asks for more of it each
// time. The operation goes on behind so much of it.
constexpr milliseconds kBurst{20};

wxWindow* WindowOf(HWND window) {
    return reinterpret_cast<wxWindow*>(window);
}

// The toolkit's loop that runs; where none does, one for the life of this object. There is none without the toolkit.
class Loop {
public:
    Loop() {
        if (wxTheApp == nullptr) return;
        m_pLoop = wxEventLoopBase::GetActive();
        if (m_pLoop != nullptr) return;
        m_own.emplace();
        m_pLoop = &*m_own;
        m_activator.emplace(m_pLoop);
    }

    explicit operator bool() const { return m_pLoop != nullptr; }
    wxEventLoopBase* operator->() const { return m_pLoop; }

private:
    std::optional<wxEventLoop> m_own;
    std::optional<wxEventLoopActivator> m_activator;
    wxEventLoopBase* m_pLoop = nullptr;
};

}  // namespace

HWND ToolkitWindows::HandleOf(wxWindow* window) {
    return reinterpret_cast<HWND>(window);
}

HWND ToolkitWindows::MakeDialog(const platform::DialogTemplate& dialog, HWND parent) {
    return wxTheApp == nullptr ? nullptr : HandleOf(new TemplateDialog(dialog, WindowOf(parent)));
}

HWND ToolkitWindows::GetControl(HWND dialog, int id) {
    return HandleOf(static_cast<TemplateDialog*>(WindowOf(dialog))->Control(id));
}

void ToolkitWindows::DestroyWindow(HWND window) {
    if (TemplateDialog* const dialog = dynamic_cast<TemplateDialog*>(WindowOf(window)))
        dialog->Retire();
    else
        WindowOf(window)->Destroy();
}

void ToolkitWindows::ShowWindow(HWND window, int state) {
    WindowOf(window)->Show(state != SW_HIDE);
    WindowOf(window)->Update();
    m_lastNo = {};  // what the display says to it is waited for
}

void ToolkitWindows::EnableWindow(HWND window, int enable) {
    if (!WindowOf(window)->IsBeingDeleted()) WindowOf(window)->Enable(enable != 0);
}

void ToolkitWindows::SetWindowText(HWND window, const CString& text) {
    WindowOf(window)->SetLabel(ToToolkit(text));
}

void ToolkitWindows::SetProgressRange(HWND bar, int lowest, int highest) {
    static_cast<ProgressBar*>(WindowOf(bar))->SetRange(lowest, highest);
}

void ToolkitWindows::SetProgressPosition(HWND bar, int position) {
    static_cast<ProgressBar*>(WindowOf(bar))->SetPosition(position);
}

int ToolkitWindows::MessageWaits() {
    const Clock::time_point now = Clock::now();
    if (!m_bBurst && now - m_lastNo < kPause) return 0;
    if (!m_bBurst) m_burstEnd = now + kBurst;
    const Loop loop;
    m_bBurst = loop && now < m_burstEnd && loop->Pending();
    if (!m_bBurst) m_lastNo = now;
    return m_bBurst;
}

int ToolkitWindows::PumpMessage() {
    // The result tells of the toolkit's main loop, which may not run, and which learns of its end by itself.
    if (const Loop loop; loop) (void)loop->Dispatch();
    return 1;
}

int ToolkitWindows::OnIdle(int) {
    const Clock::time_point now = Clock::now();
    if (now - m_lastIdle < kPause) return 0;
    m_lastIdle = now;
    const Loop loop;
    return loop && loop->ProcessIdle();
}

int ToolkitWindows::MessageBox(HWND owner, const CString& text, const CString& caption, unsigned int style) {
    if (wxTheApp == nullptr) return IDOK;
    const long icon = (style & MB_ICONEXCLAMATION) != 0 ? wxICON_EXCLAMATION : wxICON_NONE;
    wxMessageBox(ToToolkit(text), ToToolkit(caption), wxOK | icon, WindowOf(owner));
    return IDOK;
}

int ToolkitWindows::RunFileDialog(HWND owner, const FileDialogRequest& request, CString& path) {
    return wxTheApp == nullptr ? IDCANCEL : ChooseFile(WindowOf(owner), request, path);
}

int ToolkitWindows::WaitForSocket(int descriptor, int events, int timeout) {
    const int ready = PollSocket(descriptor, events, 0);
    const Loop loop;
    if (ready != 0 || timeout == 0 || !loop) return ready != 0 ? ready : PollSocket(descriptor, events, timeout);
    const SocketWatch watch(descriptor, events);
    if (!watch.Watches()) return CWindowSystem::WaitForSocket(descriptor, events, timeout);
    const Clock::time_point end = Clock::now() + milliseconds(timeout);
    while (!watch.Ready()) {
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now()).count();
        if (timeout > 0 && left <= 0) break;
        const auto step = timeout > 0 ? std::min<long>(left, kMessageStep) : kMessageStep;
        (void)loop->DispatchTimeout(static_cast<unsigned long>(step));
    }
    return PollSocket(descriptor, events, 0);
}

}  // namespace desktop
