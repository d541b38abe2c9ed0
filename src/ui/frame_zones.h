#pragma once

#include "base/geometry.h"

namespace brindlecast {

// Where a point lies in the main window, which has no system frame: a band along each side resizes it.
enum class FrameZone { Inside, Left, Top, Right, Bottom, TopLeft, TopRight, BottomLeft, BottomRight };

// The zone of a point in client coordinates of a window of that size. The upper and lower bands win over the
// sides; a corner is as wide as the band. All lengths in pixels.
[[nodiscard]] FrameZone FrameZoneAt(Point point, Size window, int band);

} // namespace brindlecast
