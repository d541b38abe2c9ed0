#pragma once

#include "base/settings_store.h"
#include "ui/window.h"

#include <windows.h>

#include <shellapi.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace brindlecast {

class PlayerEngine;
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
    void RestorePlacement();
    void RememberPlacement();
    [[nodiscard]] LRESULT OnCustomMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // Shape; main_window_shape.cpp.
    void OnSize();
    void LayoutChildren();
    void Paint();
    [[nodiscard]] LRESULT OnHitTest(WPARAM wParam, LPARAM lParam) const;
    [[nodiscard]] LRESULT OnSetCursor(WPARAM wParam, LPARAM lParam) const;
    void OnGetMinMaxInfo(MINMAXINFO& info) const;

    // Timers; main_window_timers.cpp.
    void StartTimers();
    void StopTimers();
    void OnTimer(UINT_PTR id);

    // What plays; main_window_transport.cpp.
    bool OpenFile(std::wstring path);
    void Play();
    void ShowOpenDialog();
    void TogglePlayPause();
    void StopPlayback();
    void OnGraphEvent();
    void OnDropFiles(HDROP drop);
    // In the library and in the list.
    void AddRecentFile(const std::wstring& path);
    void NotifyOfGraphEvents();
    [[nodiscard]] bool DrainGraphEvents();

    // Commands, wheel and the children's wishes; main_window_commands.cpp.
    void OnCommand(int id);
    void OnEscape();
    void OnMouseWheel(int delta);
    void SeekToTenThousandth(int position);

    SettingsStore& store;
    HINSTANCE instance = nullptr;
    std::unique_ptr<VideoWindow> videoWindow;
    std::unique_ptr<PlayerEngine> engine;
    // Full screen is on: no frame, no bands.
    bool isFullScreen = false;
    std::vector<std::wstring> recentFiles; // newest first
};

} // namespace brindlecast
