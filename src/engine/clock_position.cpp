#include "engine/clock_position.h"

#include <algorithm>

namespace brindlecast {

Time100ns PositionFromGraphClock(const GraphClockReading& reading) {
    constexpr Time100ns kStartLead = 2'000'000;
    // After the end of the stream the graph answers the duration itself.
    if (reading.duration > 0 && reading.reported == reading.duration) {
        return reading.duration;
    }
    const Time100ns elapsed = std::max<Time100ns>(0, reading.reported - reading.lastSeekTarget - kStartLead);
    const Time100ns position =
        reading.lastSeekTarget + static_cast<Time100ns>(static_cast<double>(elapsed) * reading.rate);
    return reading.duration > 0 ? std::min(position, std::max(reading.duration, reading.lastSeekTarget))
                                : position;
}

} // namespace brindlecast
