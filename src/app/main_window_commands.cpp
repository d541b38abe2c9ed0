#include "app/command_texts.h"
#include "app/file_dialog.h"
#include "app/main_window.h"
#include "app/open_dialog_texts.h"
#include "app/overlay.h"
#include "app/position_text.h"
#include "app/rate_rules.h"
#include "app/volume_step.h"
#include "base/bounded_text.h"
#include "base/trace.h"
#include "chrome/title_bar.h"
#include "chrome/toolbar.h"
#include "engine/player_engine.h"
#include "engine/repeat_marks.h"
#include "engine/volume_curve.h"
#include "subtitles/subtitle_manager.h"

namespace brindlecast {

namespace {

constexpr DWORD kTrackHold = 1500; // milliseconds
constexpr int kFullTurn = 360;
constexpr double kMillisecondsPerSecond = 1000.0;

} // namespace

void MainWindow::OnCommand(int id) {
    if (const Command* command = FindCommand(id)) {
        RunCommand(*command);
    } else {
        OpenRange(FindRange(id));
    }
}

void MainWindow::OpenRange(const RangeCommand& command) {
    switch (command.range) {
    case CommandRange::AudioTrack: SelectAudioTrack(command.index); break;
    case CommandRange::Subtitle: SelectSubtitle(command.index); break;
    case CommandRange::RecentFile: OpenRecentFile(static_cast<std::size_t>(command.index)); break;
    default: break;
    }
}

void MainWindow::RunCommand(const Command& command) {
    switch (command.action) {
    case CommandAction::TogglePlay: TogglePlayPause(); break;
    case CommandAction::Stop: StopPlayback(); break;
    case CommandAction::OpenDialog: ShowOpenDialog(); break;
    case CommandAction::Screenshot: TakeScreenshot(); break;
    case CommandAction::About:
        MessageBoxW(Handle(), texts::kAbout, texts::kAboutCaption, MB_ICONINFORMATION);
        break;
    case CommandAction::Exit: Destroy(); break;
    case CommandAction::ToggleFullScreen: ToggleFullScreen(); break;
    case CommandAction::Escape: OnEscape(); break;
    case CommandAction::ClearRecentFiles: ClearRecentFiles(); break;
    case CommandAction::ResizeToVideo:
        ResizeToVideoPercent(static_cast<int>(command.amount));
        ShowOverlayMessage(command.text, kCommandHold);
        break;
    case CommandAction::ResizeToMonitor:
        ResizeToMonitorPercent(static_cast<int>(command.amount));
        ShowOverlayMessage(command.text, kCommandHold);
        break;
    case CommandAction::RunCommand:
        SendMessageW(Handle(), WM_COMMAND, static_cast<WPARAM>(command.amount), 0);
        break;
    case CommandAction::RunMessage: SendMessageW(Handle(), static_cast<UINT>(command.amount), 0, 0); break;
    default:
        if (engine != nullptr) {
            RunEngineCommand(command);
        }
        break;
    }
}

void MainWindow::RunEngineCommand(const Command& command) {
    const int amount = static_cast<int>(command.amount);
    switch (command.action) {
    case CommandAction::StepKeyFrame:
        StepKeyFrame(amount > 0);
        if (command.text != nullptr) {
            ShowPositionMessage(engine->GetPosition());
        }
        break;
    case CommandAction::ChangeVolume: ChangeVolume(amount > 0); break;
    case CommandAction::ToggleMute: ToggleMute(command); break;
    case CommandAction::TurnUpright:
        SetRotation(0);
        engine->SetFlipHorizontal(false);
        engine->SetFlipVertical(false);
        break;
    case CommandAction::SetRotation: SetRotation(amount); break;
    case CommandAction::Turn: Turn(amount); break;
    case CommandAction::FlipHorizontally: FlipHorizontally(); break;
    case CommandAction::FlipVertically: FlipVertically(); break;
    case CommandAction::ToggleRate: ToggleSavedRate(command); break;
    case CommandAction::ChangeRate: SetRate(StepRate(engine->rate, command.amount), command.text); break;
    case CommandAction::SetRate: SetRate(command.amount, command.text); break;
    case CommandAction::SetFrameRate:
        if (const auto rate = RateForFrameRate(command.amount, engine->frameRate)) {
            SetRate(*rate, command.text);
        }
        break;
    case CommandAction::PressMarkA: PressMarkA(command); break;
    case CommandAction::PressMarkB: PressMarkB(command); break;
    case CommandAction::ClearMarks:
        ClearMarks();
        ShowOverlayMessage(command.text, kCommandHold);
        break;
    case CommandAction::ToggleCompression: ToggleCompression(command); break;
    default: RunSubtitleCommand(command); break;
    }
}

void MainWindow::RunSubtitleCommand(const Command& command) {
    switch (command.action) {
    case CommandAction::ShiftSubtitles:
        engine->AdjustSubtitleDelay(static_cast<Milliseconds>(command.amount));
        ShowOverlayMessage(
            FormatBounded<texts::kPositionTextCapacity>(
                command.text, static_cast<double>(engine->GetSubtitleDelay()) / kMillisecondsPerSecond),
            kCommandHold);
        break;
    case CommandAction::ResetSubtitleShift:
        engine->ResetSubtitleDelay();
        ShowOverlayMessage(command.text, kCommandHold);
        break;
    case CommandAction::SubtitlesOff:
        SwitchSubtitles(false);
        ShowOverlayMessage(command.text, kCommandHold);
        break;
    case CommandAction::OpenSubtitle: OpenSubtitleFile(command); break;
    default: break;
    }
}

void MainWindow::SwitchSubtitles(bool on) {
    engine->SetSubtitleEnabled(on);
    ShowSubtitlesOn(on);
}

void MainWindow::ShowSubtitlesOn(bool on) {
    if (toolbar != nullptr) {
        toolbar->state.subtitleOn = on;
        toolbar->Refresh();
    }
}

void MainWindow::OpenSubtitleFile(const Command& command) {
    const auto path = AskForFile(Handle(), texts::kOpenSubtitleTitle, texts::kOpenSubtitleFilter);
    // The engine may have gone while the dialog stood.
    if (path && engine != nullptr && engine->LoadSubtitle(*path)) {
        Trace(L"[Brindlecast] Subtitle loaded: %s\n", *path);
        SwitchSubtitles(true);
        ShowOverlayMessage(command.text, kCommandHold);
    }
}

// Embedded tracks come first, then what was loaded from a file.
void MainWindow::SelectSubtitle(int entry) {
    if (engine == nullptr) {
        return;
    }
    std::wstring name;
    if (const int embedded = engine->GetEmbeddedSubtitleCount(); entry < embedded) {
        if (!engine->LoadEmbeddedSubtitle(entry)) {
            return;
        }
        name = engine->GetEmbeddedSubtitleName(entry);
        ShowSubtitlesOn(true);
    } else {
        if (engine->subtitleManager == nullptr || !engine->subtitleManager->HasProvider()) {
            return;
        }
        static_cast<void>(engine->SelectSubtitle(entry - embedded));
        SwitchSubtitles(true);
        name = engine->subtitleManager->NameAt(entry - embedded);
    }
    ShowOverlayMessage(FormatBounded<texts::kTrackTextCapacity>(texts::kSubtitleTrack, name), kTrackHold);
}

void MainWindow::OnEscape() {
    if (isFullScreen) {
        LeaveFullScreen();
    } else if (IsZoomed(Handle()) == FALSE) {
        ShowWindow(Handle(), SW_MINIMIZE);
    } else if (titleBar != nullptr) {
        titleBar->RestoreOwner();
    }
}

void MainWindow::OnMouseWheel(int delta) {
    if (engine != nullptr) {
        ChangeVolume(delta > 0);
    }
}

void MainWindow::ChangeVolume(bool louder) {
    engine->SetVolume(StepVolume(engine->volume, louder));
    const int percent = static_cast<int>(VolumePercent(engine->volume));
    if (toolbar != nullptr) {
        toolbar->SetVolumePercent(percent);
        toolbar->Refresh();
    }
    ShowOverlayMessage(FormatBounded<texts::kShortTextCapacity>(texts::kVolume, percent), kCommandHold);
}

void MainWindow::ToggleMute(const Command& command) {
    engine->SetMuted(!engine->muted);
    if (toolbar != nullptr) {
        toolbar->state.muted = engine->muted;
        toolbar->Refresh();
    }
    ShowOverlayMessage(engine->muted ? command.text : command.otherText, kCommandHold);
}

void MainWindow::SelectAudioTrack(int track) {
    if (engine == nullptr) {
        return;
    }
    const auto ordinal = static_cast<unsigned>(track);
    engine->SelectAudioTrack(ordinal);
    ShowOverlayMessage(
        FormatBounded<texts::kTrackTextCapacity>(texts::kAudioTrack, engine->GetAudioTrackName(ordinal)),
        kTrackHold);
}

void MainWindow::StepKeyFrame(bool forward) {
    if (forward) {
        engine->SeekNextKeyFrame();
    } else {
        engine->SeekPreviousKeyFrame();
    }
}

void MainWindow::ShowPositionMessage(Seconds position) {
    ShowOverlayMessage(FormatPosition(position), kCommandHold);
}

void MainWindow::SetRotation(int degrees) {
    engine->SetRotation(degrees);
    ShowOverlayMessage(FormatBounded<texts::kShortTextCapacity>(texts::kRotation, engine->rotation),
                       kCommandHold);
}

void MainWindow::Turn(int degrees) {
    if (engine != nullptr) {
        SetRotation((static_cast<int>(engine->rotation) + degrees) % kFullTurn);
    }
}

void MainWindow::FlipHorizontally() {
    if (engine != nullptr) {
        engine->SetFlipHorizontal(!engine->flipHorizontal);
        ShowOverlayMessage(engine->flipHorizontal ? texts::kFlippedHorizontally
                                                  : texts::kNotFlippedHorizontally,
                           kCommandHold);
    }
}

void MainWindow::FlipVertically() {
    if (engine != nullptr) {
        engine->SetFlipVertical(!engine->flipVertical);
        ShowOverlayMessage(engine->flipVertical ? texts::kFlippedVertically : texts::kNotFlippedVertically,
                           kCommandHold);
    }
}

void MainWindow::ToggleSavedRate(const Command& command) {
    const RateToggle toggle = ToggleRate(engine->rate, savedRate);
    savedRate = toggle.saved;
    SetRate(toggle.rate, command.text);
}

// A rate that can't be played is shown and not applied.
void MainWindow::SetRate(double rate, const wchar_t* text) {
    engine->SetRate(rate);
    if (text != nullptr) {
        ShowOverlayMessage(FormatBounded<texts::kShortTextCapacity>(text, rate), kCommandHold);
    }
}

void MainWindow::PressMarkA(const Command& command) {
    engine->SetMarkA();
    ShowMarks();
    ShowOverlayMessage(engine->markA > 0 ? command.text : command.otherText, kCommandHold);
}

void MainWindow::PressMarkB(const Command& command) {
    engine->SetMarkB();
    ShowMarks();
    const wchar_t* text = command.text;
    if (engine->markB == 0) {
        text = command.otherText;
    } else if (engine->markA == kRepeatFromStart) {
        text = texts::kMarkBSetFromStart;
    }
    ShowOverlayMessage(text, kCommandHold);
}

void MainWindow::ClearMarks() {
    engine->ClearMarks();
    if (toolbar != nullptr) {
        toolbar->state.markFractionA = 0.0;
        toolbar->state.markFractionB = 0.0;
        toolbar->Refresh();
    }
}

// As parts of a duration, which a file may not have.
void MainWindow::ShowMarks() {
    const Seconds duration = engine->GetDuration();
    if (toolbar == nullptr || !(duration > 0.0)) {
        return;
    }
    const double units = duration * static_cast<double>(kUnitsPerSecond);
    toolbar->state.markFractionA = static_cast<double>(engine->markA) / units;
    toolbar->state.markFractionB = static_cast<double>(engine->markB) / units;
    toolbar->Refresh();
}

void MainWindow::ToggleCompression(const Command& command) {
    engine->ToggleDRC();
    bool enabled = false;
    std::uint32_t level = 0;
    if (engine->GetDRC(&enabled, &level)) {
        ShowOverlayMessage(enabled ? command.text : command.otherText, kCommandHold);
    }
}

} // namespace brindlecast
