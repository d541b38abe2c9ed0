#include "app/main_window.h"
#include "app/open_dialog_texts.h"
#include "app/recent_list.h"
#include "base/paths.h"
#include "base/text.h"
#include "chrome/video_window.h"
#include "engine/player_engine.h"
#include "library/playlist_database.h"
#include "ui/command_ids.h"
#include "ui/messages.h"

#include <commdlg.h>
#include <evcode.h>
#include <shellapi.h>

#include <array>

namespace brindlecast {

namespace {

constexpr std::size_t kPathCapacity = 260;

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

bool MainWindow::OpenFile(std::wstring path) {
    if (engine == nullptr) {
        return false;
    }
    if (videoWindow != nullptr) {
        videoWindow->DetachRenderer();
    }
    engine->CloseGraph();
    if (!engine->OpenFile(path)) {
        return false;
    }
    NotifyOfGraphEvents();
    if (videoWindow != nullptr) {
        videoWindow->idle = false;
        InvalidateRect(videoWindow->Handle(), nullptr, FALSE);
    }
    Play();
    SetWindowTextW(Handle(), FormatText(L"Brindlecast - %s", FileNameOf(path)).c_str());
    AddRecentFile(path);
    return true;
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

void MainWindow::AddRecentFile(const std::wstring& path) {
    PlaylistDatabase::Instance().AddRecent(path);
    PutInFront(recentFiles, path);
}

void MainWindow::ShowOpenDialog() {
    std::array<wchar_t, kPathCapacity> path{};
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = Handle();
    dialog.lpstrFilter = texts::kOpenFilter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.lpstrTitle = texts::kOpenTitle;
    dialog.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    if (GetOpenFileNameW(&dialog) != FALSE) {
        OpenFile(path.data());
    }
}

void MainWindow::TogglePlayPause() {
    if (engine == nullptr) {
        return;
    }
    if (engine->currentFile.empty()) {
        if (!recentFiles.empty() && Exists(recentFiles.front())) {
            OpenFile(recentFiles.front());
        }
        return;
    }
    if (engine->state == kEngineRunning) {
        if (engine->control != nullptr && SUCCEEDED(engine->control->Pause())) {
            engine->state = kEnginePaused;
        }
    } else {
        Play();
    }
}

void MainWindow::StopPlayback() {
    if (engine == nullptr || engine->currentFile.empty()) {
        return;
    }
    engine->ClearMarks();
    if (videoWindow != nullptr) {
        videoWindow->DetachRenderer();
    }
    engine->CloseGraph();
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
    if (engine->markA >= 1 && engine->markB <= engine->markA) {
        engine->Seek(static_cast<Seconds>(engine->markA) / static_cast<Seconds>(kUnitsPerSecond));
        Play();
        return;
    }
    OnCommand(kCommandStop);
}

void MainWindow::OnDropFiles(HDROP drop) {
    std::wstring first;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count && first.empty(); ++i) {
        std::array<wchar_t, kPathCapacity> path{};
        if (DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size())) > 0) {
            first = path.data();
        }
    }
    DragFinish(drop);
    if (!first.empty()) {
        OpenFile(first);
    }
}

} // namespace brindlecast
