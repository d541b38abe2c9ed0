#include "engine/render_rect.h"

namespace brindlecast {

RenderRect LetterboxRect(Size video, Size host) {
    if (video.width < 1 || video.height < 1) {
        return {};
    }
    const double scaleX = static_cast<double>(host.width) / video.width;
    const double scaleY = static_cast<double>(host.height) / video.height;
    if (scaleX > scaleY) {
        const int width = static_cast<int>(video.width * scaleY);
        return {(host.width - width) / 2, 0, width, host.height};
    }
    // The free space is halved before it is truncated, so that a picture of 562.5 rows begins at row 218 of
    // 1000.
    const double height = video.height * scaleX;
    return {0, static_cast<int>((host.height - height) / 2), host.width, static_cast<int>(height)};
}

std::uint32_t NormalizeRotation(int degrees) {
    constexpr int kFullTurn = 360;
    constexpr int kQuarterTurn = 90;
    // The remainder first: adding a full turn to the smallest number can't overflow then.
    const int positive = (degrees % kFullTurn + kFullTurn) % kFullTurn;
    return static_cast<std::uint32_t>(positive / kQuarterTurn * kQuarterTurn);
}

} // namespace brindlecast
