#include "app/edge_snapping.h"
#include "app/main_window.h"
#include "base/win32/geometry.h"
#include "playlist_ui/playlist_window.h"

namespace brindlecast {

namespace {

constexpr UINT kPlaceOnly = SWP_NOACTIVATE | SWP_NOZORDER;

Point PointFrom(const POINT& point) {
    return {static_cast<int>(point.x), static_cast<int>(point.y)};
}

} // namespace

void MainWindow::OnEnterSizeMove() {
    GetCursorPos(&dragStartCursor);
    GetWindowRect(Handle(), &dragStartRect);
    if (playlistWindow != nullptr && playlistWindow->IsVisible()) {
        playlistWindow->UpdateDockState();
    }
}

bool MainWindow::HasDockedPlaylist() const {
    return playlistWindow != nullptr && playlistWindow->IsVisible() && playlistWindow->docked;
}

LRESULT MainWindow::OnMoving(WPARAM wParam, LPARAM lParam) {
    if (magnetDistance <= 0 || isFullScreen) {
        return Default(WM_MOVING, wParam, lParam);
    }
    auto& moved = *reinterpret_cast<RECT*>(lParam);
    SnapWhileMoving(moved);
    if (HasDockedPlaylist()) {
        RECT present{};
        GetWindowRect(Handle(), &present);
        const LONG right = moved.left - present.left;
        const LONG down = moved.top - present.top;
        if (right != 0 || down != 0) {
            const HWND playlist = playlistWindow->Handle();
            RECT place{};
            GetWindowRect(playlist, &place);
            SetWindowPos(playlist, nullptr, place.left + right, place.top + down, 0, 0,
                         kPlaceOnly | SWP_NOSIZE);
        }
    }
    return TRUE;
}

// By the cursor and the start of the drag, not by what the system proposes: a rectangle that was snapped
// would be the base of the next proposal, and stick.
void MainWindow::SnapWhileMoving(RECT& moved) const {
    POINT cursor{};
    GetCursorPos(&cursor);
    const Rect candidate =
        DraggedRect(FromRect(dragStartRect), PointFrom(dragStartCursor), PointFrom(cursor));
    const RECT dragged = ToRect(candidate);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    if (GetMonitorInfoW(MonitorFromRect(&dragged, MONITOR_DEFAULTTONEAREST), &monitor) != FALSE) {
        moved = ToRect(SnapToEdges(candidate, FromRect(monitor.rcWork), SnapLimit(magnetDistance)));
    }
}

void MainWindow::PlaceDockedPlaylist() {
    if (isFullScreen || IsIconic(Handle()) != FALSE || !HasDockedPlaylist()) {
        return;
    }
    RECT own{};
    GetWindowRect(Handle(), &own);
    const HWND playlist = playlistWindow->Handle();
    RECT place{};
    GetWindowRect(playlist, &place);
    const LONG width = place.right - place.left;
    const LONG x = playlistWindow->dockSide == DockSide::Left ? own.left - width : own.right;
    SetWindowPos(playlist, nullptr, x, own.top, width, own.bottom - own.top, kPlaceOnly);
}

} // namespace brindlecast
