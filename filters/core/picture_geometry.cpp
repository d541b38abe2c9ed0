#include "filters/core/picture_geometry.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace brindlecast {

int NormalizedRotation(std::int64_t degrees) {
    const int turned = static_cast<int>(((degrees % 360) + 360) % 360);
    return turned / 90 * 90;
}

PictureSize DisplaySize(PictureSize stored, int aspectX, int aspectY, int rotation) {
    PictureSize shown = stored;
    if (aspectX > 0 && aspectY > 0) {
        const std::int64_t width = (std::int64_t{stored.height} * aspectX + aspectY / 2) / aspectY;
        shown.width = static_cast<int>(std::clamp<std::int64_t>(width, 1, kMaxPictureSide));
    }
    if (rotation == 90 || rotation == 270) {
        std::swap(shown.width, shown.height);
    }
    return shown;
}

std::array<TextureCoordinate, 4> CornerCoordinates(const Orientation& orientation, const TexturePart& part) {
    const TextureCoordinate topLeft{part.left, part.top};
    const TextureCoordinate topRight{part.right, part.top};
    const TextureCoordinate bottomLeft{part.left, part.bottom};
    const TextureCoordinate bottomRight{part.right, part.bottom};
    std::array<TextureCoordinate, 4> corners{topLeft, topRight, bottomLeft, bottomRight};
    switch (orientation.rotation) {
    case 90: // the stored picture's bottom left comes to stand at the top left
        corners = {bottomLeft, topLeft, bottomRight, topRight};
        break;
    case 180: corners = {bottomRight, bottomLeft, topRight, topLeft}; break;
    case 270: corners = {topRight, bottomRight, topLeft, bottomLeft}; break;
    default: break;
    }
    if (orientation.flip) {
        std::swap(corners[0], corners[1]);
        std::swap(corners[2], corners[3]);
    }
    return corners;
}

TexturePart PartOfSource(const PictureRect& source, PictureSize display, const Orientation& orientation) {
    if (source.Empty() || display.width < 1 || display.height < 1) {
        return {};
    }
    const auto share = [](int value, int whole) {
        return std::clamp(static_cast<float>(value) / static_cast<float>(whole), 0.0F, 1.0F);
    };
    TexturePart shown{share(source.left, display.width), share(source.top, display.height),
                      share(source.right, display.width), share(source.bottom, display.height)};
    if (orientation.flip) {
        shown = {1 - shown.right, shown.top, 1 - shown.left, shown.bottom};
    }
    switch (orientation.rotation) {
    case 90: // x on the screen runs up the stored picture
        return {shown.top, 1 - shown.right, shown.bottom, 1 - shown.left};
    case 180: return {1 - shown.right, 1 - shown.bottom, 1 - shown.left, 1 - shown.top};
    case 270: return {1 - shown.bottom, shown.left, 1 - shown.top, shown.right};
    default: return shown;
    }
}

int RotationOfDisplayMatrix(const std::array<std::int32_t, 9>& matrix) {
    // Where the stored picture's x axis points on the screen, y running down.
    const std::int64_t x = matrix[0];
    const std::int64_t y = matrix[1];
    if (std::abs(x) >= std::abs(y)) {
        return x >= 0 ? 0 : 180;
    }
    return y > 0 ? 90 : 270;
}

int TapsFor(double sourceTexels, double outputPixels) {
    if (outputPixels <= 0) {
        return 1;
    }
    const double reduction = sourceTexels / outputPixels;
    if (reduction <= 2.0) {
        return 1;
    }
    return reduction <= 4.0 ? 2 : 4;
}

} // namespace brindlecast
