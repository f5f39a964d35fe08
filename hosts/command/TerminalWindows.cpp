#include "TerminalWindows.h"

#include <algorithm>
#include <cstdlib>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/files/PendingFile.h>
#include <iostream>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kDrawingPause{50};
constexpr int kBarWidth = 30;

// Presses of Ctrl-C that no dialog has been told of, and whether there was one before.
volatile std::sig_atomic_t g_pressed = 0;
volatile std::sig_atomic_t g_pressedBefore = 0;

void NotePress(int number) {
    if (g_pressedBefore) {
        hostkit::RemovePendingFiles();
        signal(number, SIG_DFL);
        raise(number);
        return;
    }
    g_pressedBefore = 1;
    g_pressed = 1;
}

bool IsTerminal() {
    const char* const kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) && kind != nullptr && std::string_view(kind) != "dumb";
}

std::string Outside(const CString& text) {
    return hostkit::Shown(hostkit::FromCodePage(text.View()));
}

}  // namespace

CTerminalWindows::CTerminalWindows(bool quiet) : m_bQuiet(quiet), m_bTerminal(IsTerminal()), m_pBefore(Install(this)) {
    g_pressed = 0;
    g_pressedBefore = 0;
    struct sigaction action {};
    action.sa_handler = NotePress;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, nullptr, &m_oldInterrupt);
    // One that is ignored (a shell's background job) is meant for another program.
    if (m_oldInterrupt.sa_handler != SIG_IGN) sigaction(SIGINT, &action, nullptr);
}

CTerminalWindows::~CTerminalWindows() {
    sigaction(SIGINT, &m_oldInterrupt, nullptr);
    Install(m_pBefore);
}

HWND CTerminalWindows::Add(int id, const Window* dialog) {
    return Handle(m_windows.emplace_back(Window{id, dialog, {}}));
}

CTerminalWindows::Window* CTerminalWindows::Dialog() {
    const auto found =
        std::find_if(m_windows.begin(), m_windows.end(), [](const Window& window) { return window.dialog == nullptr; });
    return found == m_windows.end() ? nullptr : &*found;
}

HWND CTerminalWindows::MakeDialog(const platform::DialogTemplate& dialog, HWND) {
    if (Dialog() != nullptr) return nullptr;  // there is one line
    const HWND window = Add(dialog.id, nullptr);
    Of(window)->text = dialog.caption;
    for (const platform::DialogControl& control : dialog.controls)
        Add(control.id, Of(window));
    m_nPercent = 0;
    m_nDrawn = -1;
    m_bShown = false;
    m_bCancelled = false;
    return window;
}

HWND CTerminalWindows::GetControl(HWND dialog, int id) {
    for (Window& window : m_windows)
        if (window.dialog == Of(dialog) && window.id == id) return Handle(window);
    return nullptr;
}

void CTerminalWindows::DestroyWindow(HWND window) {
    if (m_bShown && !m_bQuiet) {
        DrawIfDue();
        if (m_bTerminal) std::cerr << '\n' << std::flush;
    }
    const Window* const gone = Of(window);
    m_windows.remove_if([gone](const Window& one) { return &one == gone || one.dialog == gone; });
}

void CTerminalWindows::ShowWindow(HWND window, int state) {
    if (Of(window)->dialog != nullptr || state == SW_HIDE || m_bShown) return;
    m_bShown = true;
    if (IsDrawn())
        DrawIfDue();
    else if (!m_bQuiet)
        std::cerr << Caption() << "...\n" << std::flush;
}

void CTerminalWindows::EnableWindow(HWND, int) {}

void CTerminalWindows::SetWindowText(HWND window, const CString& text) {
    Of(window)->text = text;
}

void CTerminalWindows::SetProgressRange(HWND, int lowest, int highest) {
    m_nLowest = lowest;
    m_nHighest = std::max(highest, lowest + 1);
}

void CTerminalWindows::SetProgressPosition(HWND, int position) {
    if (m_bCancelled) return;
    const int done = std::clamp(position, m_nLowest, m_nHighest) - m_nLowest;
    m_nPercent = done * 100 / (m_nHighest - m_nLowest);
    DrawIfDue();
}

void CTerminalWindows::DrawIfDue() {
    if (!IsDrawn() || !m_bShown || m_nPercent == m_nDrawn) return;
    const Clock::time_point now = Clock::now();
    if (m_nDrawn != -1 && now - m_lastDrawing < kDrawingPause) return;
    const auto filled = static_cast<std::size_t>(m_nPercent * kBarWidth / 100);
    std::cerr << "\r\x1B[K" << Caption() << " [" << std::string(filled, '#') << std::string(kBarWidth - filled, '-')
              << "] " << m_nPercent << '%' << std::flush;
    m_nDrawn = m_nPercent;
    m_lastDrawing = now;
}

std::string CTerminalWindows::Caption() {
    const Window* const dialog = Dialog();
    return dialog == nullptr ? std::string() : Outside(dialog->text);
}

int CTerminalWindows::MessageWaits() {
    return g_pressed != 0 && Dialog() != nullptr;
}

int CTerminalWindows::PumpMessage() {
    g_pressed = 0;
    m_bCancelled = true;
    if (Window* const dialog = Dialog(); dialog != nullptr) platform::DeliverCommand(Handle(*dialog), IDCANCEL);
    return 1;
}

int CTerminalWindows::OnIdle(int) {
    DrawIfDue();
    return 0;
}

int CTerminalWindows::MessageBox(HWND, const CString& text, const CString& caption, unsigned int) {
    std::cerr << Outside(caption) << ": " << Outside(text) << '\n' << std::flush;
    return IDOK;
}

// The command line names every file.
int CTerminalWindows::RunFileDialog(HWND, const FileDialogRequest&, CString&) {
    return IDCANCEL;
}
