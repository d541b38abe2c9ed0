#include "app/command_texts.h"
#include "app/file_dialog.h"
#include "app/main_window.h"
#include "app/next_action.h"
#include "app/open_dialog_texts.h"
#include "app/overlay.h"
#include "app/recent_list.h"
#include "base/paths.h"
#include "base/text.h"
#include "chrome/title_bar.h"
#include "chrome/toolbar.h"
#include "chrome/video_window.h"
#include "engine/player_engine.h"
#include "inspection/shell_links.h"
#include "library/playlist_database.h"
#include "library/playlist_format.h"
#include "playlist_ui/playlist_window.h"
#include "subtitles/subtitle_manager.h"
#include "ui/command_ids.h"
#include "ui/messages.h"

#include <evcode.h>

namespace brindlecast {

namespace {

constexpr DWORD kFileNameHold = 2000; // milliseconds
constexpr DWORD kStateHold = 1000;
constexpr DWORD kRepeatHold = 2000;

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

bool MainWindow::OpenFile(const std::wstring& path) {
    if (engine == nullptr) {
        return false;
    }
    const std::wstring file = ResolveShortcut(path);
    if (videoWindow != nullptr) {
        videoWindow->DetachRenderer();
    }
    engine->CloseGraph();
    FindInPlaylist(file);
    if (!engine->OpenFile(file)) {
        return false;
    }
    NotifyOfGraphEvents();
    if (videoWindow != nullptr) {
        videoWindow->idle = false;
        InvalidateRect(videoWindow->Handle(), nullptr, FALSE);
    }
    Play();
    ShowPlaying();
    ShowOpenFile(file);
    return true;
}

// A file outside the list replaces it by its series, also when it will not open.
void MainWindow::FindInPlaylist(const std::wstring& path) {
    if (playlistWindow == nullptr) {
        return;
    }
    PlaylistModel& model = playlistWindow->model;
    if (const std::int32_t index = model.FindByPath(path); index >= 0) {
        model.SetCurrent(index);
    } else {
        model.ReplaceWithSeries(path);
    }
}

// A graph that refuses to run stays open and stopped, as the state then shows. Playing may have built another
// graph, whose events and window are taken over like those of the first.
void MainWindow::Play() {
    if (videoWindow != nullptr) {
        videoWindow->DetachRenderer();
    }
    static_cast<void>(engine->Play());
    NotifyOfGraphEvents();
    if (videoWindow != nullptr) {
        videoWindow->AttachRenderer();
    }
}

void MainWindow::ShowPlaying() {
    if (toolbar != nullptr) {
        toolbar->state.playing = engine->state == kEngineRunning;
        toolbar->Refresh();
    }
}

void MainWindow::ShowOpenFile(const std::wstring& path) {
    const std::wstring name(FileNameOf(path));
    SetWindowTextW(Handle(), FormatText(L"Brindlecast - %s", name).c_str());
    if (titleBar != nullptr) {
        titleBar->SetFileText(name);
    }
    ShowOverlayMessage(name, kFileNameHold);
    AddRecentFile(path);
    const MediaSummary summary = engine->GetMediaSummary();
    if (toolbar != nullptr) {
        const SubtitleManager* const subtitles = engine->subtitleManager.get();
        toolbar->state.subtitleOn = subtitles != nullptr && subtitles->HasProvider() && subtitles->enabled;
        toolbar->state.videoCodecText = summary.videoCodec;
        toolbar->state.audioCodecText = summary.audioCodec;
        toolbar->state.isHardware = summary.isHardware;
        toolbar->state.channels = summary.audioChannels;
        toolbar->state.fileOpen = true;
        toolbar->Refresh();
    }
    if (playlistWindow != nullptr) {
        playlistWindow->model.UpdateMediaInfo(path, engine->GetDuration(),
                                              FormatCodecInfo(summary.videoCodec, summary.audioCodec));
    }
}

void MainWindow::AddRecentFile(const std::wstring& path) {
    PlaylistDatabase::Instance().AddRecent(path);
    PutInFront(recentFiles, path);
}

void MainWindow::OpenRecentFile(std::size_t index) {
    if (index >= recentFiles.size()) {
        return;
    }
    const std::wstring path = recentFiles[index];
    if (Exists(path)) {
        OpenFile(path);
        return;
    }
    PlaylistDatabase::Instance().RemoveRecent(path);
    recentFiles.erase(recentFiles.begin() + static_cast<std::ptrdiff_t>(index));
    MessageBoxW(Handle(), texts::kFileMissing, texts::kFileMissingCaption, MB_ICONWARNING);
}

void MainWindow::ClearRecentFiles() {
    recentFiles.clear();
    PlaylistDatabase::Instance().ClearRecent();
}

void MainWindow::ShowOpenDialog() {
    if (const auto path = AskForFile(Handle(), texts::kOpenTitle, texts::kOpenFilter)) {
        OpenFile(*path);
    }
}

void MainWindow::TogglePlayPause() {
    if (engine == nullptr) {
        return;
    }
    if (engine->currentFile.empty()) {
        if (!recentFiles.empty() && Exists(recentFiles.front())) {
            // A copy: opening rearranges the list.
            OpenFile(std::wstring(recentFiles.front()));
        }
        return;
    }
    if (engine->state != kEngineRunning) {
        Play();
    } else if (engine->control != nullptr && SUCCEEDED(engine->control->Pause())) {
        engine->state = kEnginePaused;
    }
    ShowPlaying();
    ShowOverlayMessage(engine->state == kEngineRunning ? texts::kPlaying : texts::kPaused, kStateHold);
}

void MainWindow::StopPlayback() {
    if (engine == nullptr || engine->currentFile.empty()) {
        return;
    }
    ShowOverlayMessage(texts::kStopped, kStateHold);
    engine->ClearMarks();
    if (videoWindow != nullptr) {
        videoWindow->DetachRenderer();
    }
    engine->CloseGraph();
    ShowNothingOpen();
}

// The window's own text keeps the name of the last file.
void MainWindow::ShowNothingOpen() {
    if (toolbar != nullptr) {
        const ToolbarState old = toolbar->state;
        toolbar->state = {};
        toolbar->state.subtitleOn = old.subtitleOn;
        toolbar->state.muted = old.muted;
        toolbar->state.volumePercent = old.volumePercent;
        toolbar->Refresh();
    }
    if (titleBar != nullptr) {
        titleBar->SetFileText({});
    }
    if (videoWindow != nullptr) {
        videoWindow->idle = true;
        InvalidateRect(videoWindow->Handle(), nullptr, FALSE);
    }
}

void MainWindow::NotifyOfGraphEvents() {
    if (engine->events != nullptr) {
        engine->events->SetNotifyWindow(reinterpret_cast<OAHWND>(Handle()), kMessageGraphEvent, 0);
        // Events that came before are not told of.
        PostMessageW(Handle(), kMessageGraphEvent, 0, 0);
    }
}

bool MainWindow::DrainGraphEvents() {
    bool complete = false;
    // Kept here: a handler further down may close the graph.
    const ComPtr<IMediaEventEx> events = engine->events;
    long code = 0;
    LONG_PTR first = 0;
    LONG_PTR second = 0;
    while (SUCCEEDED(events->GetEvent(&code, &first, &second, 0))) {
        events->FreeEventParams(code, first, second);
        complete = complete || code == EC_COMPLETE;
    }
    return complete;
}

void MainWindow::OnGraphEvent() {
    if (engine == nullptr || engine->events == nullptr || !DrainGraphEvents()) {
        return;
    }
    const EndOfFile end{engine->markA, engine->markB, playlistWindow != nullptr,
                        playlistWindow != nullptr && playlistWindow->groupQueueActive};
    switch (ChooseNextAction(end)) {
    case NextAction::RepeatFromA:
        engine->Seek(static_cast<Seconds>(engine->markA) / static_cast<Seconds>(kUnitsPerSecond));
        Play();
        ShowOverlayMessage(texts::kRepeatsToEnd, kRepeatHold);
        break;
    case NextAction::PlayNextItem: PlayNextItem(); break;
    case NextAction::PlayNextFavorite: PlayNextFavorite(); break;
    case NextAction::Stop: OnCommand(kCommandStop); break;
    }
}

} // namespace brindlecast
