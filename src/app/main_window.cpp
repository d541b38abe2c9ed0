#include "app/main_window.h"

#include "app/main_window_layout.h"
#include "app/overlay.h"
#include "app/resource_ids.h"
#include "app/settings.h"
#include "base/display_scale.h"
#include "base/win32/geometry.h"
#include "chrome/title_bar.h"
#include "chrome/toolbar.h"
#include "chrome/video_window.h"
#include "engine/player_engine.h"
#include "engine/volume_curve.h"
#include "library/playlist_database.h"
#include "playlist_ui/playlist_services.h"
#include "playlist_ui/playlist_window.h"
#include "ui/messages.h"

#include <imm.h>
#include <shellapi.h>

#include <optional>

namespace brindlecast {

namespace {

constexpr const wchar_t* kClassName = L"BrindlecastMainWindow";
constexpr const wchar_t* kCaption = L"Brindlecast";
constexpr UINT kClassStyle = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
constexpr DWORD kStyle = WS_POPUP | WS_CLIPCHILDREN | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;

Size ScreenSize() {
    return {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

// In the size in which it is shown, which LoadIcon does not ask for.
HICON SmallIcon(HINSTANCE instance) {
    return static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(kIconSmall), IMAGE_ICON,
                                         GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON),
                                         LR_SHARED));
}

// Posts the end of the message pump whatever happens before.
struct QuitGuard {
    QuitGuard() = default;
    QuitGuard(const QuitGuard&) = delete;
    QuitGuard& operator=(const QuitGuard&) = delete;
    ~QuitGuard() { PostQuitMessage(0); }
};

std::optional<Rect> WorkAreaOf(const Rect& rect) {
    const RECT platformRect = ToRect(rect);
    const HMONITOR monitor = MonitorFromRect(&platformRect, MONITOR_DEFAULTTONULL);
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    if (monitor == nullptr || GetMonitorInfoW(monitor, &info) == FALSE) {
        return std::nullopt;
    }
    return FromRect(info.rcWork);
}

} // namespace

MainWindow::MainWindow(SettingsStore& theStore) : store(theStore) {}

MainWindow::~MainWindow() {
    engine.reset();
    Destroy();
    recentFiles.clear();
    playlistWindow.reset();
    toolbar.reset();
    videoWindow.reset();
    titleBar.reset();
}

bool MainWindow::Create(HINSTANCE moduleInstance) {
    instance = moduleInstance;
    LoadSettings(CurrentSettings(), store);
    const Class windowClass{kClassName, kClassStyle, LoadIconW(instance, MAKEINTRESOURCEW(kIconLarge)),
                            SmallIcon(instance)};
    const Rect start = CenterOnScreen(kStartSize, ScreenSize());
    if (!Register(instance, windowClass) ||
        !CreateHandle(instance, windowClass,
                      {kCaption, kStyle, WS_EX_APPWINDOW, start.left, start.top, start.Width(),
                       start.Height(), nullptr})) {
        return false;
    }
    RestorePlacement();
    return true;
}

void MainWindow::Destroy() {
    if (Handle() != nullptr) {
        DestroyWindow(Handle());
    }
}

void MainWindow::RestorePlacement() {
    const AppSettings& settings = CurrentSettings();
    if (!settings.rememberWindowPos || settings.windowW <= 0 || settings.windowH <= 0) {
        return;
    }
    const Point stored{settings.windowX, settings.windowY};
    const Size size{settings.windowW, settings.windowH};
    const Point corner = RestoreCorner(stored, size, WorkAreaOf(StoredRectangle(stored, size)), ScreenSize());
    SetWindowPos(Handle(), nullptr, corner.x, corner.y, size.width, size.height, SWP_NOZORDER);
    if (settings.windowMaximized) {
        ShowWindow(Handle(), SW_MAXIMIZE);
    }
}

void MainWindow::RememberPlacement() {
    AppSettings& settings = CurrentSettings();
    if (!settings.rememberWindowPos) {
        return;
    }
    WINDOWPLACEMENT placement{};
    placement.length = sizeof(placement);
    GetWindowPlacement(Handle(), &placement);
    settings.windowMaximized = placement.showCmd == SW_MAXIMIZE;
    if (!isFullScreen && !settings.windowMaximized) {
        const Rect normal = FromRect(placement.rcNormalPosition);
        settings.windowX = normal.left;
        settings.windowY = normal.top;
        settings.windowW = normal.Width();
        settings.windowH = normal.Height();
    }
}

// The order is that in which one thing needs another.
void MainWindow::OnCreate() {
    DragAcceptFiles(Handle(), TRUE);
    // Letters are commands, also while the user's input method would compose Hangul of them.
    ImmAssociateContext(Handle(), nullptr);
    videoWindow = std::make_unique<VideoWindow>();
    if (!videoWindow->Create(instance, Handle())) {
        videoWindow.reset();
    }
    OpenLibrary();
    magnetDistance = static_cast<std::int32_t>(ReadSetting(store, settings::kMagnetDistance));
    CreateEngine();
    ShowSoundState();
    CreatePlaylist();
    if (videoWindow != nullptr) {
        CreateOverlay(videoWindow->Handle(), instance);
    }
    StartTimers();
}

// Without a library the list holds what this run opens.
void MainWindow::OpenLibrary() {
    PlaylistDatabase& library = PlaylistDatabase::Instance();
    library.Open();
    recentFiles = library.LoadRecent();
}

void MainWindow::CreateEngine() {
    engine = std::make_unique<PlayerEngine>(store);
    if (videoWindow == nullptr) {
        return;
    }
    engine->videoHost = videoWindow->Handle();
    engine->toolbarHeight = Scaled(kToolbarHeight);
    engine->volume = static_cast<float>(ReadSetting(store, settings::kVolume)) / 100.0F;
    engine->muted = ReadSetting(store, settings::kMuted) != 0;
    NotifyOfGraphEvents();
}

void MainWindow::ShowSoundState() {
    if (toolbar == nullptr) {
        return;
    }
    toolbar->SetVolumePercent(static_cast<int>(VolumePercent(ClampVolume(engine->volume))));
    toolbar->state.muted = engine->muted;
    toolbar->state.subtitleOn = ReadSetting(store, settings::kSubtitleEnabled) != 0;
    toolbar->Refresh();
}

void MainWindow::CreatePlaylist() {
    playlistWindow = std::make_unique<PlaylistWindow>(SystemPlaylistServices(store));
    if (!playlistWindow->Create(Handle(), instance)) {
        playlistWindow.reset();
    } else if (ReadSetting(store, settings::kPlaylistVisible) != 0) {
        ShowPlaylist();
    }
}

void MainWindow::OnDestroy() {
    const QuitGuard quit;
    RememberPlacement();
    SaveSettings(CurrentSettings(), store);
    StopTimers();
    ReleaseOverlay();
    engine.reset();
}

LRESULT MainWindow::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CREATE: OnCreate(); return 0;
    case WM_DESTROY: OnDestroy(); return 0;
    case WM_MOVE: PlaceDockedPlaylist(); return Default(message, wParam, lParam);
    case WM_SIZE: OnSize({LOWORD(lParam), HIWORD(lParam)}); return 0;
    case WM_PAINT: Paint(); return 0;
    case WM_ERASEBKGND:
    case WM_NCACTIVATE: return 1; // the frame is painted with the rest
    case WM_NCCALCSIZE: return 0; // the client area is the whole window
    case WM_NCHITTEST: return OnHitTest(wParam, lParam);
    case WM_SETCURSOR: return OnSetCursor(wParam, lParam);
    case WM_GETMINMAXINFO: OnGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
    case WM_ENTERSIZEMOVE: OnEnterSizeMove(); return 0;
    case WM_MOVING: return OnMoving(wParam, lParam);
    case WM_COMMAND: OnCommand(LOWORD(wParam)); return 0;
    case WM_TIMER: OnTimer(wParam); return 0;
    case WM_DROPFILES: OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;
    default: return HandleInput(message, wParam, lParam);
    }
}

LRESULT MainWindow::HandleInput(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_KEYDOWN: // keys act through the accelerators alone
    case WM_MOUSEMOVE: return 0;
    case WM_LBUTTONDBLCLK: return SendMessageW(Handle(), kMessageTogglePlay, 0, 0);
    case WM_MBUTTONDOWN: ToggleFullScreen(); return 0;
    case WM_MOUSEWHEEL: OnMouseWheel(GET_WHEEL_DELTA_WPARAM(wParam)); return 0;
    default: return OnOwnMessage(message, wParam, lParam);
    }
}

} // namespace brindlecast
