#pragma once

#include "base/geometry.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace brindlecast::testing {

// What the system tells of the player's windows. Rectangles in screen coordinates.

inline constexpr const wchar_t* kTitleBarClass = L"BrindlecastTitleBar";
inline constexpr const wchar_t* kToolbarClass = L"BrindlecastToolbar";
inline constexpr const wchar_t* kPlaylistClass = L"BrindlecastPlaylist";

[[nodiscard]] std::string TextOf(const Rect& rect);

[[nodiscard]] std::uint32_t StyleOf(HWND window);
[[nodiscard]] std::uint32_t ExtendedStyleOf(HWND window);
[[nodiscard]] Rect MonitorOf(HWND window);
[[nodiscard]] Rect WorkAreaOf(HWND window);
// A bar of the main window, whether it is its child or floats; null when there is none.
[[nodiscard]] HWND BarOf(HWND mainWindow, const wchar_t* className);
// Whether the system moves or sizes the window by the mouse at this moment.
[[nodiscard]] bool IsInDrag(HWND window);
// The shape of the mouse cursor as the process in front has set it.
[[nodiscard]] HCURSOR CursorOnScreen();

// Puts the window at a place and waits until it stands there; false when it does not.
[[nodiscard]] bool PutAt(HWND window, const Rect& place);
// Waits until the window stands at a place; false when it does not.
[[nodiscard]] bool WaitForPlace(HWND window, const Rect& place);

// A press on the window that moves or sizes it, held until the object goes.
class HeldDrag {
public:
    HeldDrag(HWND draggedWindow, Point gripPoint);
    HeldDrag(const HeldDrag&) = delete;
    HeldDrag& operator=(const HeldDrag&) = delete;
    ~HeldDrag();

    // Whether the press started to move or size the window.
    [[nodiscard]] bool Started() const { return started; }
    // Moves the cursor to this distance from the grip.
    void MoveBy(Point distance) const;

private:
    HWND window;
    Point grip;
    bool started;
};

} // namespace brindlecast::testing
