#pragma once

#include "base/time_types.h"

namespace brindlecast {

// What Wine's filter graph says about the position: it adds the time that its clock has run since the last
// seek, at any rate, beginning 200 ms before the first sample is due.
struct GraphClockReading {
    Time100ns lastSeekTarget = 0; // 0 when there was none
    Time100ns reported = 0;
    double rate = 1.0;
    Time100ns duration = 0; // 0 when unknown
};

// The position that is heard: corrected by lead and rate, within the last seek's target and the duration.
[[nodiscard]] Time100ns PositionFromGraphClock(const GraphClockReading& reading);

} // namespace brindlecast
