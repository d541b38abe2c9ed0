#include "ui/frame_cursor.h"

#include "base/display_scale.h"

namespace brindlecast {

FrameZone FrameZoneOnScreen(HWND window, POINT screenPoint) {
    RECT outer{};
    GetWindowRect(window, &outer);
    const Point inside{static_cast<int>(screenPoint.x - outer.left),
                       static_cast<int>(screenPoint.y - outer.top)};
    return FrameZoneAt(inside, SizeOf(outer), Scaled(kResizeBand));
}

} // namespace brindlecast
