#pragma once

#include "app/main_window_layout.h"
#include "base/geometry.h"

#include <optional>
#include <string>

namespace brindlecast {

// Sizes of the main window that give the picture a wanted size, in pixels. Results beyond the range of int
// end there.

// What frame and bars take from the window.
struct WindowChrome {
    int width = 0;
    int height = 0;
    bool operator==(const WindowChrome&) const = default;
};
[[nodiscard]] WindowChrome ChromeOf(const MainWindowMetrics& metrics);

// The size of a window whose picture has that percentage of the video's width and height. Nothing unless both
// components of the video's size are at least 1.
[[nodiscard]] std::optional<Size> WindowForVideoPercent(Size video, int percent, WindowChrome chrome);

// The size of a window that takes that percentage of the work area's width or height, whichever gives the
// picture in the video's shape less room. Nothing unless both components of the video's size are at least 1.
[[nodiscard]] std::optional<Size> WindowForMonitorPercent(Size video, int percent, const Rect& workArea,
                                                          WindowChrome chrome);

// Where a window goes that gets a new size: its centre stays, unless it would leave the work area. One that
// is larger than the area stands out at the left and the top.
[[nodiscard]] Rect PlaceAroundCentre(const Rect& window, Size newSize, const Rect& workArea);

// What is left for the picture in a window of that client size; negative where there is no room.
[[nodiscard]] Size VideoAreaOf(Size client, const MainWindowMetrics& metrics);

// The on-screen message while the window is resized.
[[nodiscard]] std::wstring VideoSizeText(Size videoArea);

} // namespace brindlecast
