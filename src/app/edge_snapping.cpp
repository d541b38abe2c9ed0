#include "app/edge_snapping.h"

#include "base/display_scale.h"
#include "base/saturate.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace brindlecast {

namespace {

// Moves two opposite sides together, as far as both stay within the range of int.
void Shift(int& first, int& second, std::int64_t distance) {
    const std::int64_t possible =
        std::clamp(distance, std::int64_t{std::numeric_limits<int>::min()} - std::min(first, second),
                   std::int64_t{std::numeric_limits<int>::max()} - std::max(first, second));
    first = static_cast<int>(first + possible);
    second = static_cast<int>(second + possible);
}

bool IsNear(std::int64_t distance, int limit) {
    return std::abs(distance) < limit;
}

void SnapAxis(int& first, int& second, int areaFirst, int areaSecond, int limit) {
    if (const std::int64_t distance = std::int64_t{areaFirst} - first; IsNear(distance, limit)) {
        Shift(first, second, distance);
    }
    if (const std::int64_t distance = std::int64_t{areaSecond} - second; IsNear(distance, limit)) {
        Shift(first, second, distance);
    }
}

} // namespace

Rect DraggedRect(const Rect& start, Point startCursor, Point cursor) {
    Rect dragged = start;
    Shift(dragged.left, dragged.right, std::int64_t{cursor.x} - startCursor.x);
    Shift(dragged.top, dragged.bottom, std::int64_t{cursor.y} - startCursor.y);
    return dragged;
}

int SnapLimit(int magnetDistance) {
    return TruncateToInt(DisplayScale() * static_cast<float>(magnetDistance));
}

Rect SnapToEdges(const Rect& window, const Rect& workArea, int limit) {
    Rect snapped = window;
    SnapAxis(snapped.left, snapped.right, workArea.left, workArea.right, limit);
    SnapAxis(snapped.top, snapped.bottom, workArea.top, workArea.bottom, limit);
    return snapped;
}

} // namespace brindlecast
