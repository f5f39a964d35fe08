// TerminalProgress: one operation on one line of stderr, and Ctrl-C as its Cancel button. One at a time, on the main
// thread.
//
// Where stderr is a terminal the line holds caption, bar and percentage and is drawn anew at most 20 times a second;
// elsewhere a plain line says that the operation began. With quiet neither is shown. The bar of an operation that is
// cancelled stays where it was.
//
// The first Ctrl-C cancels, at the next question; a second one ends the program.
#pragma once

#include <chrono>
#include <csignal>
#include <string>

class CTerminalProgress {
public:
    CTerminalProgress(const std::string& caption, bool quiet);
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
    const bool m_bQuiet;
    const bool m_bTerminal;
    struct sigaction m_oldInterrupt {};
    int m_nPercent = 0;
    int m_nDrawn = -1;      // the percentage on the screen; -1: none
    bool m_bShown = false;  // whether it began
    Clock::time_point m_lastDrawing;
};
