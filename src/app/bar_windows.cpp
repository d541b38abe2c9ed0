#include "app/bar_windows.h"

namespace brindlecast {

namespace {

constexpr DWORD kFloatingStyle = WS_POPUP | WS_CLIPCHILDREN;
constexpr DWORD kFloatingExtendedStyle = WS_EX_TOPMOST | WS_EX_TOOLWINDOW;
constexpr DWORD kDockedStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN;

void SetStyles(HWND window, DWORD style, DWORD extendedStyle) {
    SetWindowLongPtrW(window, GWL_STYLE, static_cast<LONG_PTR>(style));
    SetWindowLongPtrW(window, GWL_EXSTYLE, static_cast<LONG_PTR>(extendedStyle));
}

} // namespace

void FloatBar(HWND bar, const Rect& screenRect) {
    // Hidden before the style without WS_VISIBLE is set: a style alone takes nothing off the screen.
    ShowWindow(bar, SW_HIDE);
    SetParent(bar, nullptr);
    SetStyles(bar, kFloatingStyle, kFloatingExtendedStyle);
    // Only the place in the order makes a window topmost, whatever its style says.
    SetWindowPos(bar, HWND_TOPMOST, screenRect.left, screenRect.top, screenRect.Width(), screenRect.Height(),
                 SWP_NOACTIVATE | SWP_FRAMECHANGED);
    InvalidateRect(bar, nullptr, FALSE);
}

void DockBar(HWND bar, HWND parent) {
    // As with the way there, the style alone would leave it topmost.
    SetWindowPos(bar, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SetStyles(bar, kDockedStyle, 0);
    SetParent(bar, parent);
    InvalidateRect(bar, nullptr, FALSE);
}

} // namespace brindlecast
