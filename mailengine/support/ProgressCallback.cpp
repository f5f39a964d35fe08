#include <climits>
#include <cstdint>
#include <new>
#include <utility>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/ProgressDialog.h>
#include <mailengine/support/Resources.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/support/platform/windows/WinApp.h>

namespace {

// So long, in milliseconds, the full bar stays to be seen.
constexpr unsigned int kFinalPause = 100;

// Handlers that call from inside the pump may pump in turn, so deep. What they leave the outer calls dispatch, and a
// handler that calls for each of its messages needs no more stack than this.
constexpr int kMaxPumping = 4;

// Counts a call that is under way.
class Depth {
public:
    explicit Depth(int& count) : m_count(++count) {}
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
    ~Depth() { --m_count; }

private:
    int& m_count;
};

}  // namespace

CProgressCallback::CProgressCallback(const char* title, int showCancel, CWnd* parent)
    : m_strTitle(title), m_nShowCancel(showCancel), m_pParent(parent) {}

CProgressCallback::~CProgressCallback() {
    CloseDialog();
}

int CProgressCallback::Start(unsigned int total) {
    m_nTotal = total == 0 ? 100 : total;
    m_nDone = 0;
    m_bCanceled = 0;
    ++m_nStarts;
    CloseDialog();
    m_pDialog = new (std::nothrow) CProgressDialog(m_strTitle, m_nShowCancel, nullptr);
    if (m_pDialog == nullptr) return 0;
    const int created = m_pDialog->Create(resources::kProgressDialog, m_pParent);
    if (created != 0) m_pDialog->ShowWindow(SW_SHOW);
    DoEvents();
    return created;
}

int CProgressCallback::Callback(unsigned int amount) {
    // More than an unsigned int holds is as good as all of it.
    m_nDone = amount > UINT_MAX - m_nDone ? UINT_MAX : m_nDone + amount;
    int result = 1;
    if (m_pDialog != nullptr) {
        ShowPercentage(Percentage());
        result = m_pDialog->m_bContinue;
        if (result == 0) {
            Complete();
            m_bCanceled = 1;  // also where a handler has begun anew meanwhile: the caller's operation was cancelled
        }
    }
    DoEvents();
    return result;
}

void CProgressCallback::Complete() {
    m_nDone = m_nTotal;
    if (m_pDialog == nullptr) return;
    const unsigned int start = m_nStarts;
    ShowPercentage(100);
    DoEvents();
    if (Stands(start)) CSystem::Get().Sleep(kFinalPause);
    if (Stands(start)) CloseDialog();
}

// The window messages that wait, all of them, and the work for idle times around them.
void CProgressCallback::DoEvents() {
    if (m_nPumping >= kMaxPumping) return;
    const Depth depth(m_nPumping);
    CWinApp* const app = AfxGetApp();
    app->OnIdle(0);
    bool pumped = false;
    for (; platform::PeekMessageA() != 0; pumped = true)
        app->PumpMessage();
    if (pumped) app->OnIdle(0);
}

void CProgressCallback::ShowPercentage(unsigned int percentage) {
    m_pDialog->m_ctrlProgress.SendMessageA(PBM_SETPOS, percentage, 0);
}

unsigned int CProgressCallback::Percentage() const {
    if (m_nDone > m_nTotal) return 100;
    return static_cast<unsigned int>(std::uint64_t{m_nDone} * 100 / m_nTotal);
}

// Whether the dialog of that Start is there, and not closed or replaced by a handler.
bool CProgressCallback::Stands(unsigned int start) const {
    return m_pDialog != nullptr && m_nStarts == start;
}

void CProgressCallback::CloseDialog() {
    CProgressDialog* const dialog = std::exchange(m_pDialog, nullptr);
    if (dialog == nullptr) return;
    dialog->DestroyWindow();
    delete dialog;
}
