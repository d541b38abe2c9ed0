#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace brindlecast {

// The value, or the end of int's range that it lies beyond.
[[nodiscard]] constexpr int SaturateToInt(std::int64_t value) {
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// The same for a real number, cut towards zero. Not for what is no number.
[[nodiscard]] constexpr int TruncateToInt(double value) {
    constexpr double kLeast = std::numeric_limits<int>::min();
    constexpr double kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, kLeast, kMost));
}

} // namespace brindlecast
