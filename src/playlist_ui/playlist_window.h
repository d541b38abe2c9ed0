#pragma once

#include "base/time_types.h"
#include "base/win32/unique_handle.h"
#include "library/playlist_model.h"
#include "playlist_ui/docking.h"
#include "ui/window.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace brindlecast {

// A favorite to play; an empty path when there is none.
struct FavoriteStart {
    std::wstring path;
    Seconds position = 0; // 0 is the beginning
};

// The panel beside the main window that owns the play list. It is made hidden, and hiding and showing never
// destroy it; it tells the main window, its owner, by messages what the user wants. It has no system frame
// and paints all of itself. Main thread only.
class PlaylistWindow final : public Window {
public:
    // What the services refer to must outlive the window.
    explicit PlaylistWindow(const PlaylistServices& services);
    // Destroys the window if it still exists. The stored list stays as it is.
    ~PlaylistWindow() override;

    // Creates the hidden window, opens the library and takes over the stored list if the settings ask for it.
    // False when the class or the window could not be created.
    [[nodiscard]] bool Create(HWND owner, HINSTANCE instance);

    [[nodiscard]] bool IsVisible() const;
    // Puts the window beside its owner, hidden or not.
    void DockToMainWindow();
    // Finds out whether the window touches its owner, after either was moved.
    void UpdateDockState();

    // Fills the rows of the favorites from the selected group.
    void RebuildFavoritesView();
    // Goes on along the favorites that are played; ends that walk behind the last one.
    [[nodiscard]] FavoriteStart AdvanceFavorite();

    PlaylistModel model;

    bool docked = false;
    DockSide dockSide = DockSide::None;

    bool groupQueueActive = false;          // playback goes along the favorites
    std::int32_t groupQueuePosition = -1;   // row of the favorite that plays, -1 for none
    std::int32_t selectedGroup = 0;         // place among the groups of favorites
    std::vector<std::int32_t> favoriteRows; // the place in the group of each row's item

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void OpenLibrary();
    void Paint() const;
    void HideAndNotify();
    void OnGetMinMaxInfo(MINMAXINFO& info) const;

    PlaylistDatabase& database;
    HWND parent = nullptr; // the owner
    UniqueBrush backgroundBrush;
};

} // namespace brindlecast
