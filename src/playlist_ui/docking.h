#pragma once

#include "base/geometry.h"

#include <cstdint>

namespace brindlecast {

// Where the play list stands beside the main window. All rectangles are pixels of the screen.
enum class DockSide : std::int32_t { None = 0, Right = 1, Left = 2 };

struct DockPlace {
    Rect window;
    DockSide side = DockSide::None;
    bool operator==(const DockPlace&) const = default;
};

// Right of the main window, as high as it; left of it where that does not fit into the work area; at the
// work area's left edge, docked to nothing, where neither does. `width` is positive.
[[nodiscard]] DockPlace PlaceBeside(const Rect& mainWindow, const Rect& workArea, int width);

// The side on which the play list touches the main window: their facing edges and their tops are less than
// `limit` apart. The right one where both would do.
[[nodiscard]] DockSide TouchedSide(const Rect& mainWindow, const Rect& playlist, int limit);

} // namespace brindlecast
