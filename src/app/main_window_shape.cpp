#include "app/main_window.h"
#include "app/main_window_layout.h"
#include "base/display_scale.h"
#include "base/win32/geometry.h"
#include "chrome/video_window.h"
#include "engine/player_engine.h"
#include "ui/frame_cursor.h"
#include "ui/paint_buffer.h"

#include <windowsx.h>

namespace brindlecast {

void MainWindow::OnSize() {
    LayoutChildren();
    if (engine != nullptr) {
        engine->RedrawVideo();
    }
}

void MainWindow::LayoutChildren() {
    RECT client{};
    GetClientRect(Handle(), &client);
    const MainWindowLayout layout = LayOutMainWindow(SizeOf(client), ScaledMetrics());
    if (videoWindow != nullptr) {
        const Rect& video = layout.video;
        MoveWindow(videoWindow->Handle(), video.left, video.top, video.Width(), video.Height(), TRUE);
    }
    InvalidateRect(Handle(), nullptr, FALSE);
}

void MainWindow::Paint() {
    // The buffer starts out black: that is the frame, and all else is covered by the children.
    const PaintBuffer buffer(Handle());
}

LRESULT MainWindow::OnHitTest(WPARAM wParam, LPARAM lParam) const {
    if (!isFullScreen) {
        const FrameZone zone = FrameZoneOnScreen(Handle(), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        if (zone != FrameZone::Inside) {
            return HitTestCode(zone);
        }
    }
    return Default(WM_NCHITTEST, wParam, lParam);
}

LRESULT MainWindow::OnSetCursor(WPARAM wParam, LPARAM lParam) const {
    if (!isFullScreen) {
        POINT cursor{};
        GetCursorPos(&cursor);
        if (const wchar_t* sizing = SizingCursor(HitTestCode(FrameZoneOnScreen(Handle(), cursor)))) {
            SetCursor(LoadCursorW(nullptr, sizing));
            return TRUE;
        }
    }
    return Default(WM_SETCURSOR, wParam, lParam);
}

void MainWindow::OnGetMinMaxInfo(MINMAXINFO& info) const {
    info.ptMinTrackSize = {Scaled(kSmallestWidth), Scaled(kSmallestHeight)};
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    if (GetMonitorInfoW(MonitorFromWindow(Handle(), MONITOR_DEFAULTTONEAREST), &monitor) == FALSE) {
        return;
    }
    const RECT& work = monitor.rcWork;
    info.ptMaxPosition = {work.left - monitor.rcMonitor.left, work.top - monitor.rcMonitor.top};
    info.ptMaxSize = {work.right - work.left, work.bottom - work.top};
}

} // namespace brindlecast
