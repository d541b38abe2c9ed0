#include "app/command_texts.h"
#include "app/main_window.h"
#include "app/overlay.h"
#include "app/settings.h"
#include "base/bounded_text.h"
#include "engine/player_engine.h"
#include "playlist_ui/playlist_window.h"
#include "ui/messages.h"

#include <algorithm>
#include <iterator>

namespace brindlecast {

namespace {

constexpr double kWholeDuration = 10000.0;
constexpr double kMillisecondsPerSecond = 1000.0;

} // namespace

// Answers 0 after an operation of the window that has no answer of its own.
template <auto Operation, auto... Arguments>
LRESULT MainWindow::Run(WPARAM, LPARAM) {
    (this->*Operation)(Arguments...);
    return 0;
}

const MainWindow::OwnMessage MainWindow::kOwnMessages[] = {
    {kMessageGraphEvent, &MainWindow::Run<&MainWindow::OnGraphEvent>},
    {kMessageTogglePlay, &MainWindow::Run<&MainWindow::TogglePlayPause>},
    {kMessageStop, &MainWindow::Run<&MainWindow::StopPlayback>},
    {kMessageStepBackward, &MainWindow::Run<&MainWindow::StepAndShow, false>},
    {kMessageStepForward, &MainWindow::Run<&MainWindow::StepAndShow, true>},
    {kMessageOpenDialog, &MainWindow::Run<&MainWindow::ShowOpenDialog>},
    {kMessageIsPlaying, &MainWindow::OnIsPlayingMessage},
    {kMessageSeek, &MainWindow::OnSeekMessage},
    {kMessageSetVolume, &MainWindow::OnSetVolumeMessage},
    {kMessageSetMuted, &MainWindow::OnSetMutedMessage},
    {kMessageTurnLeft, &MainWindow::Run<&MainWindow::Turn, 270>},
    {kMessageTurnRight, &MainWindow::Run<&MainWindow::Turn, 90>},
    {kMessageFlipHorizontal, &MainWindow::Run<&MainWindow::FlipHorizontally>},
    {kMessageFlipVertical, &MainWindow::Run<&MainWindow::FlipVertically>},
    {kMessageTogglePlaylist, &MainWindow::Run<&MainWindow::TogglePlaylist>},
    {kMessageToggleFullScreen, &MainWindow::Run<&MainWindow::ToggleFullScreen>},
    {kMessagePlayItem, &MainWindow::OnPlayItemMessage},
    {kMessagePlayItemAt, &MainWindow::OnPlayItemAtMessage},
    {kMessagePlaylistHidden, &MainWindow::Run<&MainWindow::StorePlaylistVisible, false>},
    {kMessageCurrentFile, &MainWindow::OnCurrentFileMessage},
    {kMessageCurrentPosition, &MainWindow::OnCurrentPositionMessage},
};

LRESULT MainWindow::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* const found = std::ranges::find(kOwnMessages, message, &OwnMessage::number);
    return found != std::end(kOwnMessages) ? (this->*found->handle)(wParam, lParam)
                                           : Default(message, wParam, lParam);
}

void MainWindow::StepAndShow(bool forward) {
    if (engine != nullptr) {
        StepKeyFrame(forward);
        ShowPositionMessage(engine->GetPosition());
    }
}

LRESULT MainWindow::OnIsPlayingMessage(WPARAM, LPARAM) {
    return engine != nullptr && engine->state != kEngineStopped ? 1 : 0;
}

LRESULT MainWindow::OnSeekMessage(WPARAM tenThousandths, LPARAM) {
    if (engine == nullptr || engine->seeking == nullptr) {
        return 0;
    }
    const Seconds duration = engine->GetDuration();
    if (duration > 0.0) {
        const Seconds target = duration * (static_cast<double>(tenThousandths) / kWholeDuration);
        engine->Seek(target);
        ShowPositionMessage(target);
    }
    return 0;
}

LRESULT MainWindow::OnSetVolumeMessage(WPARAM percent, LPARAM) {
    if (engine != nullptr) {
        engine->SetVolume(static_cast<float>(percent) / 100.0F);
        ShowOverlayMessage(
            FormatBounded<texts::kShortTextCapacity>(texts::kVolume, static_cast<int>(percent)),
            kCommandHold);
    }
    return 0;
}

LRESULT MainWindow::OnSetMutedMessage(WPARAM muted, LPARAM) {
    if (engine != nullptr) {
        engine->SetMuted(muted != 0);
        ShowOverlayMessage(engine->muted ? texts::kMuted : texts::kUnmuted, kCommandHold);
    }
    return 0;
}

LRESULT MainWindow::OnPlayItemMessage(WPARAM index, LPARAM) {
    PlayPlaylistIndex(static_cast<std::intptr_t>(index));
    return 0;
}

LRESULT MainWindow::OnPlayItemAtMessage(WPARAM index, LPARAM milliseconds) {
    PlayPlaylistIndexAt(static_cast<std::intptr_t>(index),
                        static_cast<double>(milliseconds) / kMillisecondsPerSecond);
    return 0;
}

LRESULT MainWindow::OnCurrentFileMessage(WPARAM buffer, LPARAM capacity) {
    auto* const text = reinterpret_cast<wchar_t*>(buffer);
    if (text == nullptr || capacity <= 0 || engine == nullptr || engine->currentFile.empty()) {
        return 0;
    }
    const std::size_t length = engine->currentFile.copy(text, static_cast<std::size_t>(capacity) - 1);
    text[length] = L'\0';
    return 0;
}

LRESULT MainWindow::OnCurrentPositionMessage(WPARAM, LPARAM) {
    return engine != nullptr ? static_cast<LRESULT>(engine->GetPosition() * kMillisecondsPerSecond) : 0;
}

void MainWindow::TogglePlaylist() {
    if (playlistWindow == nullptr) {
        return;
    }
    if (playlistWindow->IsVisible()) {
        ShowWindow(playlistWindow->Handle(), SW_HIDE);
    } else {
        ShowPlaylist();
    }
    StorePlaylistVisible(playlistWindow->IsVisible());
}

void MainWindow::ShowPlaylist() {
    playlistWindow->DockToMainWindow();
    ShowWindow(playlistWindow->Handle(), SW_SHOW);
    SetForegroundWindow(playlistWindow->Handle());
}

void MainWindow::StorePlaylistVisible(bool visible) {
    store.WriteDword(settings::kPlaylistVisible.name, visible ? 1 : 0);
}

} // namespace brindlecast
