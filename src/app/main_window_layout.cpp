#include "app/main_window_layout.h"

#include "base/display_scale.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace brindlecast {

namespace {

constexpr int kVisibleRest = 50;

Rect At(int x, int y, int width, int height) {
    return {x, y, x + width, y + height};
}

int Saturated(std::int64_t value) {
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace

MainWindowMetrics ScaledMetrics() {
    return {Scaled(kFrameWidth), Scaled(kTitleBarHeight), Scaled(kToolbarHeight)};
}

MainWindowLayout LayOutMainWindow(Size client, const MainWindowMetrics& metrics) {
    const int frame = metrics.frame;
    const int width = client.width - 2 * frame;
    return {
        At(frame, frame, width, metrics.titleBar),
        At(frame, frame + metrics.titleBar, width,
           client.height - 2 * frame - metrics.toolbar - metrics.titleBar),
        At(frame, client.height - frame - metrics.toolbar, width, metrics.toolbar),
    };
}

Rect CenterOnScreen(Size window, Size screen) {
    return At((screen.width - window.width) / 2, (screen.height - window.height) / 2, window.width,
              window.height);
}

Rect StoredRectangle(Point corner, Size size) {
    return {corner.x, corner.y, Saturated(std::int64_t{corner.x} + size.width),
            Saturated(std::int64_t{corner.y} + size.height)};
}

Point RestoreCorner(Point corner, Size size, const std::optional<Rect>& workArea, Size screen) {
    if (!workArea) {
        const Rect centred = CenterOnScreen(size, screen);
        return {centred.left, centred.top};
    }
    const Rect stored = StoredRectangle(corner, size);
    Point restored = corner;
    if (stored.right < workArea->left + kVisibleRest) {
        restored.x = workArea->left;
    }
    if (stored.bottom < workArea->top + kVisibleRest) {
        restored.y = workArea->top;
    }
    if (restored.x > workArea->right - kVisibleRest) {
        restored.x = Saturated(std::int64_t{workArea->right} - size.width);
    }
    if (restored.y > workArea->bottom - kVisibleRest) {
        restored.y = Saturated(std::int64_t{workArea->bottom} - size.height);
    }
    return restored;
}

} // namespace brindlecast
