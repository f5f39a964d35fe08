// The handles, messages and numbers that windows are spoken to with. Values are those of the Windows API, so that a
// record of calls reads the same on every window system.
#pragma once

#include <cstdint>

// A window or control, as the installed window system names it. Null: no window.
struct WindowHandle;
using HWND = WindowHandle*;

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

// Window messages.
inline constexpr unsigned int WM_DESTROY = 0x0002;
inline constexpr unsigned int WM_KILLFOCUS = 0x0008;
inline constexpr unsigned int WM_COMMAND = 0x0111;    // low 16 bits of the first parameter: the command
inline constexpr unsigned int PBM_SETRANGE = 0x0401;  // second parameter: MAKELPARAM(lowest, highest position)
inline constexpr unsigned int PBM_SETPOS = 0x0402;    // first parameter: the position

// Commands and the answers of message boxes and file dialogs.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

// Show states.
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOW = 5;

// Styles of a message box.
inline constexpr unsigned int MB_OK = 0x00;
inline constexpr unsigned int MB_ICONEXCLAMATION = 0x30;

// Two 16-bit numbers in one message parameter.
constexpr LPARAM MAKELPARAM(int low, int high) {
    return static_cast<LPARAM>((static_cast<std::uint32_t>(high) & 0xFFFF) << 16 |
                               (static_cast<std::uint32_t>(low) & 0xFFFF));
}
