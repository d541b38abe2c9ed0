#pragma once

#include <cstdint>

namespace brindlecast {

// A position or length in units of 100 nanoseconds, as the filter graph counts.
using Time100ns = std::int64_t;
// A position or length in milliseconds, as cues and the subtitle delay count.
using Milliseconds = std::int64_t;
// A position or length in seconds, as the user interface counts.
using Seconds = double;

inline constexpr Time100ns kUnitsPerSecond = 10'000'000;

} // namespace brindlecast
