#include "tests/e2e/window_state.h"

#include "base/win32/geometry.h"
#include "tests/e2e/input.h"
#include "tests/e2e/screen.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {

namespace {

MONITORINFO NearestMonitor(HWND window) {
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
    return info;
}

} // namespace

std::string TextOf(const Rect& rect) {
    return "{" + std::to_string(rect.left) + ", " + std::to_string(rect.top) + ", " +
           std::to_string(rect.right) + ", " + std::to_string(rect.bottom) + "}";
}

std::uint32_t StyleOf(HWND window) {
    return static_cast<std::uint32_t>(GetWindowLongPtrW(window, GWL_STYLE));
}

std::uint32_t ExtendedStyleOf(HWND window) {
    return static_cast<std::uint32_t>(GetWindowLongPtrW(window, GWL_EXSTYLE));
}

Rect MonitorOf(HWND window) {
    return FromRect(NearestMonitor(window).rcMonitor);
}

Rect WorkAreaOf(HWND window) {
    return FromRect(NearestMonitor(window).rcWork);
}

HWND BarOf(HWND mainWindow, const wchar_t* className) {
    const HWND child = FindWindowExW(mainWindow, nullptr, className, nullptr);
    return child != nullptr ? child : FindWindowExW(nullptr, nullptr, className, nullptr);
}

bool IsInDrag(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) != FALSE &&
           info.hwndMoveSize == window;
}

HCURSOR CursorOnScreen() {
    CURSORINFO info{};
    info.cbSize = sizeof(info);
    return GetCursorInfo(&info) != FALSE && (info.flags & CURSOR_SHOWING) != 0 ? info.hCursor : nullptr;
}

bool PutAt(HWND window, const Rect& place) {
    SetWindowPos(window, nullptr, place.left, place.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    return WaitForPlace(window, place);
}

bool WaitForPlace(HWND window, const Rect& place) {
    return WaitUntil(limits::kReaction, "a window's place", [&] { return ScreenRectOf(window) == place; });
}

HeldDrag::HeldDrag(HWND draggedWindow, Point gripPoint) : window(draggedWindow), grip(gripPoint) {
    MoveCursor(grip);
    // The window may still have older ways of the cursor before it, and then takes the press to be there.
    const bool ready = WaitUntil(limits::kReaction, "the cursor on the grip", [&] {
        DWORD_PTR answer = 0;
        POINT cursor{};
        return SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 1000, &answer) != 0 &&
               GetCursorPos(&cursor) != FALSE &&
               Point{static_cast<int>(cursor.x), static_cast<int>(cursor.y)} == grip;
    });
    PressLeft(grip);
    // What is moved before the drag has begun would not count.
    started = ready && WaitUntil(limits::kReaction, "a drag", [&] { return IsInDrag(window); });
}

HeldDrag::~HeldDrag() {
    ReleaseLeft();
    WaitUntil(limits::kReaction, "the end of a drag", [&] { return !IsInDrag(window); });
}

void HeldDrag::MoveBy(Point distance) const {
    MoveCursor({grip.x + distance.x, grip.y + distance.y});
}

} // namespace brindlecast::testing
