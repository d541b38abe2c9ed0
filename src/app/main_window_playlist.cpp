#include "app/main_window.h"
#include "engine/player_engine.h"
#include "playlist_ui/playlist_window.h"
#include "ui/command_ids.h"

#include <array>

namespace brindlecast {

namespace {

constexpr UINT kDropPathCapacity = 260; // characters with the terminator

std::vector<std::wstring> DroppedPaths(HDROP drop) {
    std::vector<std::wstring> paths;
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::array<wchar_t, kDropPathCapacity> path{};
        if (DragQueryFileW(drop, i, path.data(), kDropPathCapacity) > 0) {
            paths.emplace_back(path.data());
        }
    }
    DragFinish(drop);
    return paths;
}

} // namespace

void MainWindow::PlayNextItem() {
    if (!OpenNextItem()) {
        OnCommand(kCommandStop);
    }
}

bool MainWindow::OpenNextItem() {
    PlaylistModel& model = playlistWindow->model;
    while (model.HasNext()) {
        const std::wstring path = model.AdvanceCurrent();
        if (path.empty()) {
            return false;
        }
        if (OpenItem(path)) {
            return true;
        }
    }
    return false;
}

bool MainWindow::OpenItem(const std::wstring& path) {
    PlaylistModel& model = playlistWindow->model;
    const std::int32_t index = model.currentIndex;
    if (OpenFile(path)) {
        return true;
    }
    // A file that stands in the list twice is found at its first place. From there the walk along a list of
    // files that don't open would never end.
    if (index >= 0 && static_cast<std::size_t>(index) < model.items.size() &&
        model.items[static_cast<std::size_t>(index)].file_path == path) {
        model.SetCurrent(index);
    }
    return false;
}

void MainWindow::PlayNextFavorite() {
    const FavoriteStart next = playlistWindow->AdvanceFavorite();
    if (!next.path.empty()) {
        PlaylistModel& model = playlistWindow->model;
        if (model.FindByPath(next.path) < 0) {
            model.AddFile(next.path);
            model.RebuildView();
            model.SyncToDatabase();
        }
        if (OpenFile(next.path)) {
            if (next.position > 0.0) {
                engine->Seek(next.position);
            }
            return;
        }
    }
    playlistWindow->groupQueueActive = false;
    playlistWindow->groupQueuePosition = -1;
    InvalidateRect(playlistWindow->Handle(), nullptr, FALSE);
    OnCommand(kCommandStop);
}

std::wstring MainWindow::ChooseItem(std::intptr_t index) {
    if (playlistWindow == nullptr) {
        return {};
    }
    PlaylistModel& model = playlistWindow->model;
    if (index < 0 || static_cast<std::size_t>(index) >= model.items.size()) {
        return {};
    }
    std::wstring path = model.items[static_cast<std::size_t>(index)].file_path;
    if (!path.empty()) {
        model.SetCurrent(model.FindByPath(path));
    }
    return path;
}

void MainWindow::PlayPlaylistIndex(std::intptr_t index) {
    const std::wstring path = ChooseItem(index);
    if (!path.empty() && !OpenItem(path)) {
        static_cast<void>(OpenNextItem());
    }
}

void MainWindow::PlayPlaylistIndexAt(std::intptr_t index, Seconds start) {
    const std::wstring path = ChooseItem(index);
    if (!path.empty() && OpenFile(path) && start > 0.0) {
        engine->Seek(start);
    }
}

void MainWindow::OnDropFiles(HDROP drop) {
    const std::vector<std::wstring> paths = DroppedPaths(drop);
    if (paths.empty()) {
        return;
    }
    if (playlistWindow != nullptr) {
        playlistWindow->model.ReplaceWithSeriesOfDrop(paths.front());
    }
    OpenFile(paths.front());
    if (paths.size() == 1 || playlistWindow == nullptr) {
        return;
    }
    // The first file has come into the list with its series.
    for (std::size_t i = 1; i < paths.size(); ++i) {
        playlistWindow->model.AddFile(paths[i]);
    }
    playlistWindow->model.RebuildView();
}

} // namespace brindlecast
