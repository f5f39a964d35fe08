#include <algorithm>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/SendWait.h>

void CSendWait::Begin(Step step) {
    m_nStep = step;
    m_begun = std::chrono::steady_clock::now();
}

int CSendWait::TimeLimit() {
    const int limit = m_limits[static_cast<std::size_t>(m_nStep)];
    if (m_nStep == kConnect || m_nStep == kDataBlock) return limit;
    const auto gone = std::chrono::steady_clock::now() - m_begun;
    const auto left = limit - std::chrono::duration_cast<std::chrono::milliseconds>(gone).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
}

// The progress object tells a cancel once, to whoever asks first: the writer may have been the one.
int CSendWait::GoOn() {
    return !m_progress.UserCanceled() && m_progress.Callback(0);
}
