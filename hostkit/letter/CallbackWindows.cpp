#include <algorithm>
#include <hostkit/letter/CallbackWindows.h>

namespace hostkit {

namespace {

constexpr std::chrono::milliseconds kPause{50};  // between two questions while the percentage stays

}  // namespace

CallbackWindows::CallbackWindows(const Progress& progress) : m_progress(progress), m_pBefore(Install(this)) {}

CallbackWindows::~CallbackWindows() {
    Install(m_pBefore);
}

void CallbackWindows::Finish() {
    if (!m_bCancelled && m_nPercent != 100) m_progress(100);
}

HWND CallbackWindows::MakeDialog(const platform::DialogTemplate&, HWND) {
    if (m_bStands) return nullptr;  // there is one callback
    m_bStands = true;
    m_nPercent = 0;
    return Dialog();
}

HWND CallbackWindows::GetControl(HWND, int id) {
    return reinterpret_cast<HWND>(&m_controls.emplace_back(id));
}

void CallbackWindows::DestroyWindow(HWND window) {
    if (window != Dialog()) return;
    m_bStands = false;
    m_controls.clear();
}

void CallbackWindows::ShowWindow(HWND window, int state) {
    if (window == Dialog() && state != SW_HIDE) Ask();
}

void CallbackWindows::SetProgressRange(HWND, int lowest, int highest) {
    m_nLowest = lowest;
    m_nHighest = std::max(highest, lowest + 1);
}

void CallbackWindows::SetProgressPosition(HWND, int position) {
    const int done = std::clamp(position, m_nLowest, m_nHighest) - m_nLowest;
    const int percent = done * 100 / (m_nHighest - m_nLowest);
    if (percent == m_nPercent) return;
    m_nPercent = percent;
    Ask();
}

int CallbackWindows::MessageWaits() {
    if (m_bStands && Clock::now() - m_lastAsked >= kPause) Ask();
    return m_bPressed && m_bStands;
}

int CallbackWindows::PumpMessage() {
    m_bPressed = false;
    if (m_bStands) platform::DeliverCommand(Dialog(), IDCANCEL);
    return 1;
}

void CallbackWindows::Ask() {
    if (m_bCancelled) return;
    m_lastAsked = Clock::now();
    m_bCancelled = m_bPressed = !m_progress(m_nPercent);
}

}  // namespace hostkit
