#include "playlist_ui/playlist_window.h"

#include "base/display_scale.h"
#include "base/win32/geometry.h"
#include "library/favorites_database.h"
#include "playlist_ui/favorites_walk.h"
#include "ui/messages.h"
#include "ui/paint_buffer.h"

#include <utility>

namespace brindlecast {

namespace {

constexpr const wchar_t* kClassName = L"BrindlecastPlaylist";
constexpr const wchar_t* kTitle = L"Playlist";
constexpr UINT kClassStyle = CS_HREDRAW | CS_VREDRAW;
constexpr DWORD kStyle = WS_POPUP | WS_CLIPCHILDREN | WS_THICKFRAME;
constexpr int kProgramIcon = 107; // resource
constexpr COLORREF kBackground = RGB(0x2B, 0x2B, 0x2B);

// Lengths before scaling.
constexpr int kWidth = 420;
constexpr int kHeight = 500;
constexpr int kSmallest = 300;
constexpr int kFrameWidth = 3;
constexpr int kDockDistance = 5;

void PaintFrame(HDC context, const RECT& client, int width) {
    const auto black = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    const RECT sides[] = {{client.left, client.top, client.right, client.top + width},
                          {client.left, client.bottom - width, client.right, client.bottom},
                          {client.left, client.top, client.left + width, client.bottom},
                          {client.right - width, client.top, client.right, client.bottom}};
    for (const RECT& side : sides) {
        FillRect(context, &side, black);
    }
}

Rect RectOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return FromRect(rect);
}

} // namespace

PlaylistWindow::PlaylistWindow(const PlaylistServices& services)
    : model(services), database(services.database), backgroundBrush(CreateSolidBrush(kBackground)) {}

PlaylistWindow::~PlaylistWindow() {
    if (Handle() != nullptr) {
        DestroyWindow(Handle());
    }
}

bool PlaylistWindow::Create(HWND owner, HINSTANCE instance) {
    parent = owner;
    const Class windowClass{kClassName, kClassStyle, LoadIconW(instance, MAKEINTRESOURCEW(kProgramIcon))};
    if (!Register(instance, windowClass) ||
        !CreateHandle(instance, windowClass,
                      {kTitle, kStyle, WS_EX_TOOLWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, Scaled(kWidth),
                       Scaled(kHeight), parent})) {
        return false;
    }
    SetClassLongPtrW(Handle(), GCLP_HBRBACKGROUND, reinterpret_cast<LONG_PTR>(backgroundBrush.Get()));
    OpenLibrary();
    return true;
}

// Without a library the list is that of this run.
void PlaylistWindow::OpenLibrary() {
    database.Open();
    model.RestoreIfWanted();
}

bool PlaylistWindow::IsVisible() const {
    return Handle() != nullptr && IsWindowVisible(Handle()) != FALSE;
}

void PlaylistWindow::DockToMainWindow() {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(parent, MONITOR_DEFAULTTONEAREST), &monitor);
    const DockPlace place = PlaceBeside(RectOf(parent), FromRect(monitor.rcWork), Scaled(kWidth));
    dockSide = place.side;
    SetWindowPos(Handle(), nullptr, place.window.left, place.window.top, place.window.Width(),
                 place.window.Height(), SWP_NOZORDER | SWP_NOACTIVATE);
    docked = dockSide != DockSide::None;
}

void PlaylistWindow::UpdateDockState() {
    dockSide = TouchedSide(RectOf(parent), RectOf(Handle()), Scaled(kDockDistance));
    docked = dockSide != DockSide::None;
}

void PlaylistWindow::RebuildFavoritesView() {
    const FavoriteGroup* group = FavoritesDatabase::Instance().GroupAt(selectedGroup);
    favoriteRows.clear();
    for (std::size_t item = 0; group != nullptr && item < group->items.size(); ++item) {
        favoriteRows.push_back(static_cast<std::int32_t>(item));
    }
}

FavoriteStart PlaylistWindow::AdvanceFavorite() {
    if (!groupQueueActive) {
        return {};
    }
    const std::vector<FavoriteItem> none;
    const FavoriteGroup* group = FavoritesDatabase::Instance().GroupAt(selectedGroup);
    const std::vector<FavoriteItem>& items = group != nullptr ? group->items : none;
    FavoritesWalk walk{groupQueueActive, groupQueuePosition};
    const auto item = AdvanceWalk(walk, favoriteRows, items.size());
    groupQueueActive = walk.active;
    groupQueuePosition = walk.row;
    if (!item.has_value()) {
        return {};
    }
    return {items[*item].file_path, items[*item].position};
}

LRESULT PlaylistWindow::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT: Paint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_NCCALCSIZE: return 0; // the client area is the whole window
    case WM_NCACTIVATE: InvalidateRect(Handle(), nullptr, FALSE); return 1;
    case WM_GETMINMAXINFO: OnGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
    case WM_CLOSE: HideAndNotify(); return 0;
    case WM_DESTROY:
        // The brush goes with this object, the class stays.
        SetClassLongPtrW(Handle(), GCLP_HBRBACKGROUND, 0);
        return 0;
    default: return Default(message, wParam, lParam);
    }
}

void PlaylistWindow::Paint() const {
    const PaintBuffer buffer(Handle());
    FillRect(buffer.Context(), &buffer.Client(), backgroundBrush.Get());
    PaintFrame(buffer.Context(), buffer.Client(), Scaled(kFrameWidth));
}

void PlaylistWindow::HideAndNotify() {
    ShowWindow(Handle(), SW_HIDE);
    PostMessageW(parent, kMessagePlaylistHidden, 0, 0);
}

void PlaylistWindow::OnGetMinMaxInfo(MINMAXINFO& info) const {
    info.ptMinTrackSize = {Scaled(kSmallest), Scaled(kSmallest)};
}

} // namespace brindlecast
