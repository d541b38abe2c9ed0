#pragma once

#include "base/geometry.h"

#include <windows.h>

namespace brindlecast {

// The one passage between the platform's rectangles and ours.
[[nodiscard]] inline Rect FromRect(const RECT& rect) {
    return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
            static_cast<int>(rect.bottom)};
}
[[nodiscard]] inline RECT ToRect(const Rect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}
[[nodiscard]] inline Size SizeOf(const RECT& rect) {
    return {static_cast<int>(rect.right - rect.left), static_cast<int>(rect.bottom - rect.top)};
}

} // namespace brindlecast
