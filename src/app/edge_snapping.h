#pragma once

#include "base/geometry.h"

namespace brindlecast {

// How a window that is dragged is drawn to the edges of the work area. All lengths in pixels; no edge of a
// result lies beyond the range of int.

// Where a window would stand that stood at `start` when the drag began with the cursor at `startCursor`.
[[nodiscard]] Rect DraggedRect(const Rect& start, Point startCursor, Point cursor);

// The distance below which an edge snaps: the unscaled distance of the settings at the present display scale,
// truncated.
[[nodiscard]] int SnapLimit(int magnetDistance);

// The window against every edge of the work area from which it is less than `limit` away, its size kept. The
// sides are looked at in the order left, right, top, bottom, each where the one before has put the window;
// where both sides of an axis hit, the later one wins.
[[nodiscard]] Rect SnapToEdges(const Rect& window, const Rect& workArea, int limit);

} // namespace brindlecast
