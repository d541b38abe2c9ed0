#pragma once

#include "app/commands.h"
#include "base/geometry.h"
#include "base/settings_store.h"
#include "base/time_types.h"
#include "playlist_ui/docking.h"
#include "ui/window.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast {

class PlayerEngine;
class PlaylistWindow;
class TitleBar;
class Toolbar;
class VideoWindow;

// The one top-level window. It has no system frame: its client area is the whole window, it paints a thin
// black frame and answers hit tests itself. It owns the playback engine and the windows around the picture,
// which tell it of user actions by messages; it alone decides what plays. Any of the objects it owns may be
// absent: a handler that needs an absent one does nothing. Main thread only.
class MainWindow final : public Window {
public:
    // `store` must outlive the window.
    explicit MainWindow(SettingsStore& theStore);
    // Closes the engine, then destroys the window if it still exists, then what it owned.
    ~MainWindow() override;

    // Loads the settings and creates the window with everything in it; false when the class or the window
    // could not be created.
    [[nodiscard]] bool Create(HINSTANCE moduleInstance);
    void Destroy();

protected:
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    // Creation and destruction; main_window.cpp.
    void OnCreate();
    void OnDestroy();
    void OpenLibrary();
    void CreateEngine();
    void CreatePlaylist();
    void ShowSoundState();
    void RestorePlacement();
    void RememberPlacement();
    [[nodiscard]] LRESULT HandleInput(UINT message, WPARAM wParam, LPARAM lParam);

    // What children, the graph and the window itself ask by message; main_window_messages.cpp.
    struct OwnMessage {
        UINT number;
        LRESULT (MainWindow::*handle)(WPARAM wParam, LPARAM lParam);
    };
    static const OwnMessage kOwnMessages[];
    template <auto Operation, auto... Arguments>
    LRESULT Run(WPARAM, LPARAM);
    [[nodiscard]] LRESULT OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnSeekMessage(WPARAM tenThousandths, LPARAM);
    LRESULT OnSetVolumeMessage(WPARAM percent, LPARAM);
    LRESULT OnSetMutedMessage(WPARAM muted, LPARAM);
    LRESULT OnIsPlayingMessage(WPARAM, LPARAM);
    LRESULT OnCurrentFileMessage(WPARAM buffer, LPARAM capacity);
    LRESULT OnCurrentPositionMessage(WPARAM, LPARAM);
    LRESULT OnPlayItemMessage(WPARAM index, LPARAM);
    LRESULT OnPlayItemAtMessage(WPARAM index, LPARAM milliseconds);
    void StepAndShow(bool forward);
    void TogglePlaylist();
    void ShowPlaylist();
    void StorePlaylistVisible(bool visible);

    // Shape; main_window_shape.cpp.
    void OnSize(Size client);
    void RedrawVideo();
    void ShowVideoSize(Size client);
    void LayoutChildren();
    void Paint();
    [[nodiscard]] LRESULT OnHitTest(WPARAM wParam, LPARAM lParam) const;
    [[nodiscard]] LRESULT OnSetCursor(WPARAM wParam, LPARAM lParam) const;
    void OnGetMinMaxInfo(MINMAXINFO& info) const;

    // Moving, and what moves along; main_window_moving.cpp.
    void OnEnterSizeMove();
    [[nodiscard]] LRESULT OnMoving(WPARAM wParam, LPARAM lParam);
    void SnapWhileMoving(RECT& moved) const;
    [[nodiscard]] bool HasDockedPlaylist() const;
    void PlaceDockedPlaylist();

    // Size by the video and full screen; main_window_sizing.cpp.
    [[nodiscard]] Size VideoSize() const;
    void ResizeToVideoPercent(int percent);
    void ResizeToMonitorPercent(int percent);
    void ResizeAroundCentre(const std::optional<Size>& size);
    void ToggleFullScreen();
    void EnterFullScreen();
    void LeaveFullScreen();
    void HidePlaylistForFullScreen();
    void BringPlaylistBack();

    // Timers; main_window_timers.cpp.
    static constexpr UINT_PTR kPositionTimer = 1001;
    static constexpr UINT_PTR kUnusedTimer = 1002; // this and the next are never set
    static constexpr UINT_PTR kBarsTimer = 1005;   // in full screen
    static constexpr UINT_PTR kOverlayTimer = 1006;
    void StartTimers();
    void StopTimers();
    void OnTimer(UINT_PTR id);
    void ShowPosition();
    void ShowBarsNearCursor();

    // What plays; main_window_transport.cpp.
    bool OpenFile(const std::wstring& path);
    void FindInPlaylist(const std::wstring& path);
    void ShowOpenFile(const std::wstring& path);
    void Play();
    void ShowPlaying();
    void ShowOpenDialog();
    void TogglePlayPause();
    void StopPlayback();
    void ShowNothingOpen();
    // In the library and in the list.
    void AddRecentFile(const std::wstring& path);
    void OpenRecentFile(std::size_t index);
    void ClearRecentFiles();
    void TakeScreenshot();
    void NotifyOfGraphEvents();
    [[nodiscard]] bool DrainGraphEvents();
    void OnGraphEvent();

    // Along the play list; main_window_playlist.cpp.
    void PlayNextItem();
    void PlayNextFavorite();
    // Goes on to the next item that opens; false when there is none.
    [[nodiscard]] bool OpenNextItem();
    [[nodiscard]] bool OpenItem(const std::wstring& path);
    void PlayPlaylistIndex(std::intptr_t index);
    void PlayPlaylistIndexAt(std::intptr_t index, Seconds start);
    [[nodiscard]] std::wstring ChooseItem(std::intptr_t index);
    void OnDropFiles(HDROP drop);

    // Commands, wheel and keys; main_window_commands.cpp.
    void OnCommand(int id);
    void RunCommand(const Command& command);
    void RunEngineCommand(const Command& command);
    void RunSubtitleCommand(const Command& command);
    void SwitchSubtitles(bool on);
    void ShowSubtitlesOn(bool on);
    void OpenSubtitleFile(const Command& command);
    void SelectSubtitle(int entry);
    void OpenRange(const RangeCommand& command);
    void OnEscape();
    void OnMouseWheel(int delta);
    void SelectAudioTrack(int track);
    void StepKeyFrame(bool forward);
    void ShowPositionMessage(Seconds position);
    void ChangeVolume(bool louder);
    void ToggleMute(const Command& command);
    void SetRotation(int degrees);
    void Turn(int degrees);
    void FlipHorizontally();
    void FlipVertically();
    void ToggleSavedRate(const Command& command);
    // Shows the rate too, unless `text` is null.
    void SetRate(double rate, const wchar_t* text);
    void PressMarkA(const Command& command);
    void PressMarkB(const Command& command);
    void ClearMarks();
    void ShowMarks();
    void ToggleCompression(const Command& command);

    SettingsStore& store;
    HINSTANCE instance = nullptr;
    std::unique_ptr<TitleBar> titleBar;
    std::unique_ptr<VideoWindow> videoWindow;
    std::unique_ptr<Toolbar> toolbar;
    std::unique_ptr<PlaylistWindow> playlistWindow;
    std::unique_ptr<PlayerEngine> engine;

    // Full screen is on: no frame, no bands, the bars float.
    bool isFullScreen = false;
    bool fullScreenTitleBarShown = true;
    bool fullScreenToolbarShown = true;
    // The first size at start is not told to the user.
    bool sizeOverlayArmed = false;

    // From before full screen.
    bool playlistWasShown = false;
    RECT savedPlaylistRect{};
    bool savedPlaylistDocked = false;
    DockSide savedPlaylistSide = DockSide::None;
    WINDOWPLACEMENT savedPlacement{};
    LONG_PTR savedStyle = 0;
    LONG_PTR savedExStyle = 0;

    std::vector<std::wstring> recentFiles; // newest first

    std::int32_t magnetDistance = 10; // of the snapping, before scaling; 0 or less: none
    POINT dragStartCursor{};
    RECT dragStartRect{};

    double savedRate = 1.0; // to which the rate toggle comes back
};

} // namespace brindlecast
