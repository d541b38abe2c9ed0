#include "app/main_window.h"
#include "app/volume_step.h"
#include "engine/player_engine.h"
#include "ui/command_ids.h"

namespace brindlecast {

void MainWindow::OnCommand(int id) {
    switch (id) {
    case kCommandStop: StopPlayback(); break;
    case kCommandExit: Destroy(); break;
    case kCommandKeyTogglePlay: TogglePlayPause(); break;
    case kCommandKeyStepBackward:
        if (engine != nullptr) {
            engine->SeekPreviousKeyFrame();
        }
        break;
    case kCommandKeyStepForward:
        if (engine != nullptr) {
            engine->SeekNextKeyFrame();
        }
        break;
    case kCommandKeyOpen: ShowOpenDialog(); break;
    case kCommandKeyEscape: OnEscape(); break;
    default: break;
    }
}

void MainWindow::OnEscape() {
    // A maximised window is put back by its title bar, which knows the placement from before.
    if (IsZoomed(Handle()) == FALSE) {
        ShowWindow(Handle(), SW_MINIMIZE);
    }
}

void MainWindow::OnMouseWheel(int delta) {
    if (engine != nullptr) {
        engine->SetVolume(StepVolume(engine->volume, delta > 0));
    }
}

void MainWindow::SeekToTenThousandth(int position) {
    if (engine == nullptr || engine->seeking == nullptr) {
        return;
    }
    const Seconds duration = engine->GetDuration();
    if (duration > 0.0) {
        engine->Seek(duration * (position / 10000.0));
    }
}

} // namespace brindlecast
