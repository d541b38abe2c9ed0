#include "app/full_screen_bars.h"

#include "base/display_scale.h"

#include <cstdint>

namespace brindlecast {

FullScreenBands ScaledFullScreenBands() {
    return {Scaled(kTitleBarBand), Scaled(kToolbarBand)};
}

FullScreenBars BarsAtCursor(Point cursor, const Rect& monitor, const FullScreenBands& bands) {
    return {std::int64_t{cursor.y} - monitor.top < bands.titleBar,
            std::int64_t{monitor.bottom} - cursor.y < bands.toolbar};
}

FullScreenLayout LayOutFullScreen(const Rect& window, const MainWindowMetrics& metrics) {
    return {
        {0, 0, window.Width(), window.Height()},
        {window.left, window.top, window.right, window.top + metrics.titleBar},
        {window.left, window.bottom - metrics.toolbar, window.right, window.bottom},
    };
}

} // namespace brindlecast
