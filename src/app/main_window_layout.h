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

// The rectangle of that size at a point. Stored values may be anything: edges beyond the range of int end
// there, as all results below do.
[[nodiscard]] Rect StoredRectangle(Point corner, Size size);

// The upper left corner at which a stored window of positive size is put back. With a monitor, of that work
// area, each side on which fewer than 50 pixels of the window would reach into the area is put against that
// side of the area; left and top are looked at first. When no monitor meets the window it is centred on the
// screen.
[[nodiscard]] Point RestoreCorner(Point corner, Size size, const std::optional<Rect>& workArea, Size screen);

} // namespace brindlecast
