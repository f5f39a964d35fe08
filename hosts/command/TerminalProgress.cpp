#include "TerminalProgress.h"

#include <cstdlib>
#include <hostkit/files/PendingFile.h>
#include <iostream>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kDrawingPause{50};
constexpr std::chrono::seconds kSlow{1};
constexpr int kBarWidth = 30;

volatile std::sig_atomic_t g_pressed = 0;

void NotePress(int number) {
    if (!g_pressed) {
        g_pressed = 1;
        return;
    }
    hostkit::RemovePendingFiles();
    signal(number, SIG_DFL);
    raise(number);
}

bool IsTerminal() {
    const char* const kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) && kind != nullptr && std::string_view(kind) != "dumb";
}

}  // namespace

CTerminalProgress::CTerminalProgress(const std::string& caption, Shown shown)
    : m_strCaption(caption), m_shown(shown), m_bTerminal(IsTerminal()) {
    g_pressed = 0;
    if (shown == Shown::WhenSlow) return;
    struct sigaction action {};
    action.sa_handler = NotePress;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, nullptr, &m_oldInterrupt);
    // One that is ignored (a shell's background job) is meant for another program.
    if (m_oldInterrupt.sa_handler != SIG_IGN) sigaction(SIGINT, &action, nullptr);
}

CTerminalProgress::~CTerminalProgress() {
    if (m_shown != Shown::WhenSlow) sigaction(SIGINT, &m_oldInterrupt, nullptr);
    if (!m_bShown || m_shown == Shown::No || !m_bTerminal) return;
    if (m_nPercent != m_nDrawn) Draw();
    std::cerr << '\n' << std::flush;
}

bool CTerminalProgress::Show(int percent) {
    if (g_pressed) return false;
    m_nPercent = percent;
    if (m_shown == Shown::WhenSlow && (!m_bTerminal || Clock::now() - m_begin < kSlow)) return true;
    const bool isFirst = !m_bShown;
    m_bShown = true;
    if (m_shown == Shown::No) return true;
    if (!m_bTerminal) {
        if (isFirst) std::cerr << m_strCaption << "...\n" << std::flush;
    } else if (percent != m_nDrawn && (isFirst || Clock::now() - m_lastDrawing >= kDrawingPause)) {
        Draw();
    }
    return true;
}

void CTerminalProgress::Draw() {
    const auto filled = static_cast<std::size_t>(m_nPercent * kBarWidth / 100);
    std::cerr << "\r\x1B[K" << m_strCaption << " [" << std::string(filled, '#') << std::string(kBarWidth - filled, '-')
              << "] " << m_nPercent << '%' << std::flush;
    m_nDrawn = m_nPercent;
    m_lastDrawing = Clock::now();
}
