#include "ui/frame_zones.h"

namespace brindlecast {

FrameZone FrameZoneAt(Point point, Size window, int band) {
    const bool left = point.x < band;
    const bool right = point.x > window.width - band;
    if (point.y < band) {
        return left ? FrameZone::TopLeft : right ? FrameZone::TopRight : FrameZone::Top;
    }
    if (point.y > window.height - band) {
        return left ? FrameZone::BottomLeft : right ? FrameZone::BottomRight : FrameZone::Bottom;
    }
    return left ? FrameZone::Left : right ? FrameZone::Right : FrameZone::Inside;
}

} // namespace brindlecast
