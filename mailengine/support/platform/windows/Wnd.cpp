#include <utility>

#include <mailengine/support/platform/windows/WindowSystem.h>
#include <mailengine/support/platform/windows/Wnd.h>

namespace {

// Every object that has a window. There are a handful, so a list is enough.
CWnd* g_windows = nullptr;

struct CurrentMessage {
    unsigned int message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

// The message whose handler is running, for CWnd::Default. Not a field of CWnd: a handler may delete its object.
CurrentMessage g_current;

const AFX_MSGMAP_ENTRY* FindHandler(const AFX_MSGMAP* map, unsigned int message) {
    for (; map != nullptr; map = map->base)
        for (int i = 0; i < map->count; ++i)
            if (map->entries[i].message == message) return &map->entries[i];
    return nullptr;
}

}  // namespace

// The way of a message from the window system to the object, which may be gone when a handler returns.
struct WindowDelivery {
    static LRESULT Send(CWnd& wnd, unsigned int message, WPARAM wParam, LPARAM lParam) {
        const CurrentMessage before = std::exchange(g_current, {message, wParam, lParam});
        const LRESULT result = wnd.WindowProc(message, wParam, lParam);
        g_current = before;
        return result;
    }

    static CWnd* FindChild(HWND parent) {
        for (CWnd* wnd = g_windows; wnd != nullptr; wnd = wnd->m_pNext)
            if (wnd->m_hParent == parent && wnd->m_bDestroying == 0) return wnd;
        return nullptr;
    }

    static void Destroy(HWND window) {
        CWnd* const wnd = CWnd::FromHandle(window);
        if (wnd == nullptr || wnd->m_bDestroying != 0) return;
        wnd->m_bDestroying = 1;
        Send(*wnd, WM_DESTROY, 0, 0);
        while (const CWnd* const child = FindChild(window))
            Destroy(child->m_hWnd);
        if (CWnd::FromHandle(window) == wnd) wnd->Detach();
    }
};

CWnd::~CWnd() {
    Detach();
}

int CWnd::Bind(HWND window, HWND parent) {
    if (window == nullptr || m_hWnd != nullptr || FromHandle(window) != nullptr) return 0;
    m_hWnd = window;
    m_hParent = parent;
    m_pNext = std::exchange(g_windows, this);
    return 1;
}

HWND CWnd::Detach() {
    if (m_hWnd == nullptr) return nullptr;
    CWnd** link = &g_windows;
    while (*link != this)
        link = &(*link)->m_pNext;
    *link = std::exchange(m_pNext, nullptr);
    m_hParent = nullptr;
    m_bDestroying = 0;
    return std::exchange(m_hWnd, nullptr);
}

int CWnd::SubclassDlgItem(int id, const CWnd* dialog) {
    const HWND parent = HandleOf(dialog);
    return parent == nullptr ? 0 : Bind(CWindowSystem::Get().GetControl(parent, id), parent);
}

CWnd* CWnd::FromHandle(HWND window) {
    if (window == nullptr) return nullptr;
    CWnd* wnd = g_windows;
    while (wnd != nullptr && wnd->m_hWnd != window)
        wnd = wnd->m_pNext;
    return wnd;
}

void CWnd::ShowWindow(int state) {
    if (m_hWnd != nullptr) CWindowSystem::Get().ShowWindow(m_hWnd, state);
}

void CWnd::EnableWindow(int enable) {
    if (m_hWnd != nullptr) CWindowSystem::Get().EnableWindow(m_hWnd, enable);
}

void CWnd::SetWindowTextA(const char* text) {
    if (m_hWnd != nullptr) CWindowSystem::Get().SetWindowText(m_hWnd, CString(text));
}

LRESULT CWnd::SendMessageA(unsigned int message, WPARAM wParam, LPARAM lParam) {
    return m_hWnd == nullptr ? 0 : WindowDelivery::Send(*this, message, wParam, lParam);
}

int CWnd::MessageBoxA(const char* text, const char* caption, unsigned int style) {
    return CWindowSystem::Get().MessageBox(m_hWnd, CString(text), CString(caption), style);
}

int CWnd::DestroyWindow() {
    if (m_hWnd == nullptr || m_bDestroying != 0) return 0;
    const HWND window = m_hWnd;
    WindowDelivery::Destroy(window);
    CWindowSystem::Get().DestroyWindow(window);
    return 1;
}

LRESULT CWnd::WindowProc(unsigned int message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) return OnCommand(static_cast<int>(wParam & 0xFFFF));
    const AFX_MSGMAP_ENTRY* const entry = FindHandler(GetMessageMap(), message);
    if (entry == nullptr) return DefWindowProcA(message, wParam, lParam);
    entry->handler(*this);
    return 0;
}

LRESULT CWnd::DefWindowProcA(unsigned int, WPARAM, LPARAM) {
    return 0;
}

int CWnd::OnCommand(int) {
    return 0;
}

LRESULT CWnd::Default() {
    return DefWindowProcA(g_current.message, g_current.wParam, g_current.lParam);
}

int platform::DeliverCommand(HWND dialog, int id) {
    CWnd* const wnd = CWnd::FromHandle(dialog);
    return wnd != nullptr && wnd->SendMessageA(WM_COMMAND, static_cast<WPARAM>(id)) != 0;
}

void platform::DeliverDestroy(HWND window) {
    WindowDelivery::Destroy(window);
}

void platform::DeliverKillFocus(HWND window) {
    if (CWnd* const wnd = CWnd::FromHandle(window)) wnd->SendMessageA(WM_KILLFOCUS);
}
