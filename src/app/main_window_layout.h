#pragma once

#include "base/geometry.h"

#include <optional>

namespace brindlecast {

// Geometry of the main window, in pixels unless said otherwise.

// Lengths before scaling.
inline constexpr int kFrameWidth = 3;
inline constexpr int kTitleBarHeight = 32;
inline constexpr int kToolbarHeight = 60;
inline constexpr int kSmallestWidth = 200;
inline constexpr int kSmallestHeight = 100;

// The size of a first window, not scaled.
inline constexpr Size kStartSize{1200, 816};

struct MainWindowMetrics {
    int frame = 0;
    int titleBar = 0;
    int toolbar = 0;
};
// The metrics above at the present display scale.
[[nodiscard]] MainWindowMetrics ScaledMetrics();

struct MainWindowLayout {
    Rect titleBar;
    Rect video;
    Rect toolbar;
};
// Where the children stand in normal mode, in client coordinates.
[[nodiscard]] MainWindowLayout LayOutMainWindow(Size client, const MainWindowMetrics& metrics);

// A window of that size in the middle of the screen.
[[nodiscard]] Rect CenterOnScreen(Size window, Size screen);

// Where a stored window rectangle is put back: moved so far that at least 50 pixels of it reach into the work
// area of its monitor, or centred on the screen when no monitor meets it.
[[nodiscard]] Rect RestoreRectangle(const Rect& stored, const std::optional<Rect>& workArea, Size screen);

} // namespace brindlecast
