#include "app/main_window_layout.h"

#include "base/display_scale.h"

namespace brindlecast {

namespace {

constexpr int kVisibleRest = 50;

Rect At(int x, int y, int width, int height) {
    return {x, y, x + width, y + height};
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

Rect RestoreRectangle(const Rect& stored, const std::optional<Rect>& workArea, Size screen) {
    const Size size{stored.Width(), stored.Height()};
    if (!workArea) {
        return CenterOnScreen(size, screen);
    }
    int x = stored.left;
    int y = stored.top;
    if (stored.right < workArea->left + kVisibleRest) {
        x = workArea->left;
    }
    if (stored.bottom < workArea->top + kVisibleRest) {
        y = workArea->top;
    }
    if (x > workArea->right - kVisibleRest) {
        x = workArea->right - size.width;
    }
    if (y > workArea->bottom - kVisibleRest) {
        y = workArea->bottom - size.height;
    }
    return At(x, y, size.width, size.height);
}

} // namespace brindlecast
