#include "app/full_screen_bars.h"
#include "app/main_window.h"
#include "app/overlay.h"
#include "base/win32/geometry.h"
#include "chrome/title_bar.h"
#include "chrome/toolbar.h"
#include "engine/player_engine.h"

namespace brindlecast {

namespace {

constexpr UINT kPositionPeriod = 100; // milliseconds
constexpr UINT kOverlayPeriod = 16;

// Shows a floating bar above all else, without moving it, or hides it.
void ShowBar(const Window* bar, bool shown) {
    if (bar == nullptr) {
        return;
    }
    if (shown) {
        SetWindowPos(bar->Handle(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_SHOWWINDOW);
    } else {
        ShowWindow(bar->Handle(), SW_HIDE);
    }
}

} // namespace

void MainWindow::StartTimers() {
    SetTimer(Handle(), kPositionTimer, kPositionPeriod, nullptr);
    SetTimer(Handle(), kOverlayTimer, kOverlayPeriod, nullptr);
}

void MainWindow::StopTimers() {
    for (const UINT_PTR timer : {kPositionTimer, kUnusedTimer, kUnusedTimer + 1, kBarsTimer, kOverlayTimer}) {
        KillTimer(Handle(), timer);
    }
}

void MainWindow::OnTimer(UINT_PTR id) {
    if (id == kPositionTimer && engine != nullptr) {
        ShowPosition();
        engine->RepeatBetweenMarks(GetTickCount64());
    } else if (id == kBarsTimer && isFullScreen) {
        ShowBarsNearCursor();
    } else if (id == kOverlayTimer && IsOverlayActive()) {
        TickOverlay();
    }
}

void MainWindow::ShowPosition() {
    if (toolbar == nullptr) {
        return;
    }
    ToolbarState& shown = toolbar->state;
    shown.position = engine->GetPosition();
    shown.duration = engine->GetDuration();
    if (shown.duration > 0.0 && !toolbar->isSeekDragging) {
        shown.fraction = shown.position / shown.duration;
    }
    shown.rateShown = engine->rate;
    toolbar->Refresh();
}

void MainWindow::ShowBarsNearCursor() {
    POINT cursor{};
    GetCursorPos(&cursor);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(Handle(), MONITOR_DEFAULTTONEAREST), &monitor);
    const Point point{static_cast<int>(cursor.x), static_cast<int>(cursor.y)};
    const FullScreenBars bars = BarsAtCursor(point, FromRect(monitor.rcMonitor), ScaledFullScreenBands());
    fullScreenTitleBarShown = bars.titleBar;
    fullScreenToolbarShown = bars.toolbar;
    ShowBar(titleBar.get(), bars.titleBar);
    ShowBar(toolbar.get(), bars.toolbar);
}

} // namespace brindlecast
