// TerminalProgress: one operation on one line of stderr, and Ctrl-C as its Cancel button. One at a time, on the main
// thread.
//
// Where stderr is a terminal the line holds caption, bar and percentage and is drawn anew at most 20 times a second;
// elsewhere a plain line says that the operation began. With quiet neither is shown. The bar of an operation that is
// cancelled stays where it was.
//
// The first Ctrl-C cancels, at the next question; a second one ends the program. A work that is mostly done at once is
// shown in a terminal alone, and from its second second on; Ctrl-C ends the program there.
#pragma once

#include <chrono>
#include <csignal>
#include <string>

class CTerminalProgress {
public:
    enum class Shown { No, Yes, WhenSlow };
    CTerminalProgress(const std::string& caption, Shown shown);
    CTerminalProgress(const CTerminalProgress&) = delete;
    CTerminalProgress& operator=(const CTerminalProgress&) = delete;
    // Ends the line.
    ~CTerminalProgress();

    // Shows the percentage. false: Ctrl-C was pressed.
    bool Show(int percent);

private:
    using Clock = std::chrono::steady_clock;

    void Draw();

    const std::string m_strCaption;
    const Shown m_shown;
    const bool m_bTerminal;
    struct sigaction m_oldInterrupt {};
    int m_nPercent = 0;
    int m_nDrawn = -1;      // the percentage on the screen; -1: none
    bool m_bShown = false;  // whether it began
    const Clock::time_point m_begin = Clock::now();
    Clock::time_point m_lastDrawing;
};
