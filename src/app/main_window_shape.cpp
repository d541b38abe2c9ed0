#include "app/full_screen_bars.h"
#include "app/main_window.h"
#include "app/main_window_layout.h"
#include "app/overlay.h"
#include "app/window_sizing.h"
#include "base/display_scale.h"
#include "base/win32/geometry.h"
#include "chrome/title_bar.h"
#include "chrome/toolbar.h"
#include "chrome/video_window.h"
#include "engine/player_engine.h"
#include "ui/frame_cursor.h"
#include "ui/paint_buffer.h"

#include <windowsx.h>

namespace brindlecast {

namespace {

constexpr DWORD kSizeHold = 800; // milliseconds
constexpr UINT kDockedFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW;

constexpr UINT FloatingFlags(bool shown) {
    return SWP_NOZORDER | SWP_NOACTIVATE | (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW);
}

void Place(const Window* child, const Rect& place, HWND behind, UINT flags) {
    if (child != nullptr) {
        SetWindowPos(child->Handle(), behind, place.left, place.top, place.Width(), place.Height(), flags);
    }
}

} // namespace

void MainWindow::OnSize(Size client) {
    if (titleBar != nullptr) {
        titleBar->maximized = IsZoomed(Handle()) != FALSE;
    }
    LayoutChildren();
    RedrawVideo();
    if (!isFullScreen) {
        ShowVideoSize(client);
        PlaceDockedPlaylist();
    }
}

void MainWindow::RedrawVideo() {
    if (engine != nullptr) {
        engine->RedrawVideo();
    }
}

void MainWindow::ShowVideoSize(Size client) {
    // A minimised window may have a client area: it is all that stands of it on the desktop.
    if (client.width < 1 || client.height < 1 || IsIconic(Handle()) != FALSE) {
        return;
    }
    if (sizeOverlayArmed) {
        ShowOverlayMessage(VideoSizeText(VideoAreaOf(client, ScaledMetrics())), kSizeHold);
    }
    sizeOverlayArmed = true;
}

void MainWindow::LayoutChildren() {
    RECT client{};
    GetClientRect(Handle(), &client);
    if (isFullScreen) {
        RECT own{};
        GetWindowRect(Handle(), &own);
        const FullScreenLayout layout = LayOutFullScreen(FromRect(own), ScaledMetrics());
        Place(videoWindow.get(), layout.video, HWND_BOTTOM, SWP_NOACTIVATE);
        Place(titleBar.get(), layout.titleBar, nullptr, FloatingFlags(fullScreenTitleBarShown));
        Place(toolbar.get(), layout.toolbar, nullptr, FloatingFlags(fullScreenToolbarShown));
    } else {
        const MainWindowLayout layout = LayOutMainWindow(SizeOf(client), ScaledMetrics());
        Place(titleBar.get(), layout.titleBar, nullptr, kDockedFlags);
        Place(videoWindow.get(), layout.video, nullptr, SWP_NOZORDER | SWP_NOACTIVATE);
        Place(toolbar.get(), layout.toolbar, nullptr, kDockedFlags);
    }
    InvalidateRect(Handle(), nullptr, FALSE);
}

void MainWindow::Paint() {
    if (isFullScreen) {
        // There is no frame, and the style lets painting go over the children.
        PAINTSTRUCT paint{};
        BeginPaint(Handle(), &paint);
        EndPaint(Handle(), &paint);
        return;
    }
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
