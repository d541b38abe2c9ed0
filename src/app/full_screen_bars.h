#pragma once

#include "app/main_window_layout.h"
#include "base/geometry.h"

namespace brindlecast {

// In full screen title bar and toolbar are windows of their own that float over the picture while the cursor
// is near the edge of the monitor where they stand. All lengths in pixels unless said otherwise.

// How near the cursor comes to the upper and to the lower edge, before scaling.
inline constexpr int kTitleBarBand = 62;
inline constexpr int kToolbarBand = 110;

struct FullScreenBands {
    int titleBar = 0;
    int toolbar = 0;
    bool operator==(const FullScreenBands&) const = default;
};
// The bands above at the present display scale.
[[nodiscard]] FullScreenBands ScaledFullScreenBands();

struct FullScreenBars {
    bool titleBar = false;
    bool toolbar = false;
    bool operator==(const FullScreenBars&) const = default;
};
// Which bars show: each while the cursor is less than its band away from its edge of the monitor's whole
// rectangle, or beyond that edge. Cursor and monitor in screen coordinates.
[[nodiscard]] FullScreenBars BarsAtCursor(Point cursor, const Rect& monitor, const FullScreenBands& bands);

struct FullScreenLayout {
    Rect video;    // in client coordinates: all of the window
    Rect titleBar; // in screen coordinates
    Rect toolbar;  // in screen coordinates
};
// Where picture and bars stand when the window takes that rectangle of the screen.
[[nodiscard]] FullScreenLayout LayOutFullScreen(const Rect& window, const MainWindowMetrics& metrics);

} // namespace brindlecast
