#include "app/main_window.h"
#include "engine/player_engine.h"

namespace brindlecast {

namespace {

constexpr UINT_PTR kPositionTimer = 1001;
constexpr UINT kPositionPeriod = 100; // milliseconds

} // namespace

void MainWindow::StartTimers() {
    SetTimer(Handle(), kPositionTimer, kPositionPeriod, nullptr);
}

void MainWindow::StopTimers() {
    KillTimer(Handle(), kPositionTimer);
}

void MainWindow::OnTimer(UINT_PTR id) {
    if (id == kPositionTimer && engine != nullptr) {
        engine->RepeatBetweenMarks(GetTickCount64());
    }
}

} // namespace brindlecast
