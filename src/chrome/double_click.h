#pragma once

#include "base/geometry.h"

#include <cstdint>

namespace brindlecast {

// One press of the left button: milliseconds since the system started (wraps), and the screen point.
struct Press {
    std::uint32_t tick = 0;
    Point point;
};

struct DoubleClickLimits {
    std::uint32_t milliseconds = 0;
    int width = 0;
    int height = 0;
};

// True when the press follows the former one sooner and nearer than the limits. A former press that is not to
// count is given the tick 0, which lies long back but for the first moments of the system.
[[nodiscard]] bool IsDoubleClick(const Press& former, const Press& press, const DoubleClickLimits& limits);

} // namespace brindlecast
