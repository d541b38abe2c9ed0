#include "app/bar_windows.h"
#include "app/command_texts.h"
#include "app/full_screen_bars.h"
#include "app/main_window.h"
#include "app/main_window_layout.h"
#include "app/overlay.h"
#include "app/window_sizing.h"
#include "base/display_scale.h"
#include "base/win32/geometry.h"
#include "chrome/title_bar.h"
#include "chrome/toolbar.h"
#include "engine/player_engine.h"
#include "playlist_ui/playlist_window.h"

#include <algorithm>
#include <optional>

namespace brindlecast {

namespace {

constexpr UINT kBarsPeriod = 100; // milliseconds
constexpr LONG_PTR kFullScreenStyle = WS_POPUP | WS_VISIBLE;
constexpr LONG_PTR kFullScreenExStyle = WS_EX_TOPMOST;

MONITORINFO NearestMonitor(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor;
}

// On the screen; the placement counts from the work area.
Rect NormalPlace(const WINDOWPLACEMENT& placement) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromRect(&placement.rcNormalPosition, MONITOR_DEFAULTTONEAREST), &monitor);
    RECT place = placement.rcNormalPosition;
    OffsetRect(&place, monitor.rcWork.left - monitor.rcMonitor.left,
               monitor.rcWork.top - monitor.rcMonitor.top);
    return FromRect(place);
}

} // namespace

Size MainWindow::VideoSize() const {
    long width = 0;
    long height = 0;
    if (engine == nullptr || engine->basicVideo == nullptr ||
        FAILED(engine->basicVideo->GetVideoSize(&width, &height))) {
        return {};
    }
    return {static_cast<int>(width), static_cast<int>(height)};
}

void MainWindow::ResizeToVideoPercent(int percent) {
    if (!isFullScreen) {
        ResizeAroundCentre(WindowForVideoPercent(VideoSize(), percent, ChromeOf(ScaledMetrics())));
    }
}

void MainWindow::ResizeToMonitorPercent(int percent) {
    if (!isFullScreen) {
        const Rect workArea = FromRect(NearestMonitor(Handle()).rcWork);
        ResizeAroundCentre(
            WindowForMonitorPercent(VideoSize(), percent, workArea, ChromeOf(ScaledMetrics())));
    }
}

void MainWindow::ResizeAroundCentre(const std::optional<Size>& size) {
    if (!size) {
        return;
    }
    RECT own{};
    GetWindowRect(Handle(), &own);
    const Rect place = PlaceAroundCentre(FromRect(own), *size, FromRect(NearestMonitor(Handle()).rcWork));
    // The system would cut the size to the one that users may draw, which is about that of all monitors; the
    // smallest one holds all the same.
    SetWindowPos(Handle(), nullptr, place.left, place.top, std::max(place.Width(), Scaled(kSmallestWidth)),
                 std::max(place.Height(), Scaled(kSmallestHeight)), SWP_NOZORDER | SWP_NOSENDCHANGING);
}

void MainWindow::ToggleFullScreen() {
    if (isFullScreen) {
        LeaveFullScreen();
        ShowOverlayMessage(texts::kNotFullScreen, kCommandHold);
    } else {
        EnterFullScreen();
        ShowOverlayMessage(texts::kFullScreen, kCommandHold);
    }
}

void MainWindow::EnterFullScreen() {
    if (isFullScreen) {
        return;
    }
    savedPlacement.length = sizeof(savedPlacement);
    GetWindowPlacement(Handle(), &savedPlacement);
    savedStyle = GetWindowLongPtrW(Handle(), GWL_STYLE);
    savedExStyle = GetWindowLongPtrW(Handle(), GWL_EXSTYLE);
    SetWindowLongPtrW(Handle(), GWL_STYLE, kFullScreenStyle);
    SetWindowLongPtrW(Handle(), GWL_EXSTYLE, kFullScreenExStyle);
    isFullScreen = true;
    fullScreenTitleBarShown = false;
    fullScreenToolbarShown = false;
    const Rect monitor = FromRect(NearestMonitor(Handle()).rcMonitor);
    SetWindowPos(Handle(), HWND_TOPMOST, monitor.left, monitor.top, monitor.Width(), monitor.Height(),
                 SWP_FRAMECHANGED);
    const FullScreenLayout layout = LayOutFullScreen(monitor, ScaledMetrics());
    if (titleBar != nullptr) {
        FloatBar(titleBar->Handle(), layout.titleBar);
        titleBar->fullScreen = true;
    }
    if (toolbar != nullptr) {
        FloatBar(toolbar->Handle(), layout.toolbar);
        toolbar->fullScreen = true;
    }
    HidePlaylistForFullScreen();
    // A window that filled the monitor before gets no new size that would do this.
    LayoutChildren();
    RedrawVideo();
    SetTimer(Handle(), kBarsTimer, kBarsPeriod, nullptr);
}

void MainWindow::HidePlaylistForFullScreen() {
    playlistWasShown = playlistWindow != nullptr && playlistWindow->IsVisible();
    if (playlistWasShown) {
        GetWindowRect(playlistWindow->Handle(), &savedPlaylistRect);
        savedPlaylistDocked = playlistWindow->docked;
        savedPlaylistSide = playlistWindow->dockSide;
        ShowWindow(playlistWindow->Handle(), SW_HIDE);
    }
}

void MainWindow::LeaveFullScreen() {
    if (!isFullScreen) {
        return;
    }
    KillTimer(Handle(), kBarsTimer);
    if (titleBar != nullptr) {
        DockBar(titleBar->Handle(), Handle());
        titleBar->fullScreen = false;
    }
    if (toolbar != nullptr) {
        DockBar(toolbar->Handle(), Handle());
        toolbar->fullScreen = false;
    }
    isFullScreen = false;
    fullScreenTitleBarShown = true;
    fullScreenToolbarShown = true;
    const bool wasMaximized = savedPlacement.showCmd == SW_MAXIMIZE;
    // A window that has the style of a maximised one already would not be maximised.
    SetWindowLongPtrW(Handle(), GWL_STYLE, wasMaximized ? savedStyle & ~LONG_PTR{WS_MAXIMIZE} : savedStyle);
    SetWindowLongPtrW(Handle(), GWL_EXSTYLE, savedExStyle);
    SetWindowPos(Handle(), HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_FRAMECHANGED);
    if (wasMaximized) {
        const Rect normal = NormalPlace(savedPlacement);
        SetWindowPos(Handle(), nullptr, normal.left, normal.top, normal.Width(), normal.Height(),
                     SWP_NOZORDER);
        ShowWindow(Handle(), SW_MAXIMIZE);
    } else {
        SetWindowPlacement(Handle(), &savedPlacement);
    }
    LayoutChildren();
    RedrawVideo();
    BringPlaylistBack();
}

void MainWindow::BringPlaylistBack() {
    if (playlistWindow == nullptr || !playlistWasShown) {
        return;
    }
    const Rect place = FromRect(savedPlaylistRect);
    SetWindowPos(playlistWindow->Handle(), nullptr, place.left, place.top, place.Width(), place.Height(),
                 SWP_NOZORDER);
    playlistWindow->docked = savedPlaylistDocked;
    playlistWindow->dockSide = savedPlaylistSide;
    ShowWindow(playlistWindow->Handle(), SW_SHOW);
    SetForegroundWindow(playlistWindow->Handle());
}

} // namespace brindlecast
