#pragma once

#include "filters/core/picture_format.h"

#include <array>
#include <cstdint>

namespace brindlecast {

// Any number of degrees as 0, 90, 180 or 270: multiples of 360 taken off, rounded down to a multiple of 90.
[[nodiscard]] int NormalizedRotation(std::int64_t degrees);

// The size in which a picture is to be shown upright: the height kept and the width by the picture aspect
// (0:0 or a negative number means square pixels), then the sides swapped at 90 and 270 degrees.
[[nodiscard]] PictureSize DisplaySize(PictureSize stored, int aspectX, int aspectY, int rotation);

// How the picture is turned on its way to the screen: clockwise by `rotation` (normalised), then mirrored
// left to right when `flip` is set.
struct Orientation {
    int rotation = 0;
    bool flip = false;
    bool operator==(const Orientation&) const = default;
};

struct TextureCoordinate {
    float u = 0;
    float v = 0;
    bool operator==(const TextureCoordinate&) const = default;
};

// Part of the stored picture in 0..1.
struct TexturePart {
    float left = 0;
    float top = 0;
    float right = 1;
    float bottom = 1;
};

// Texture coordinates of the shown rectangle's corners: top left, top right, bottom left, bottom right.
[[nodiscard]] std::array<TextureCoordinate, 4> CornerCoordinates(const Orientation& orientation,
                                                                 const TexturePart& part);

// The part of the stored picture that a source rectangle selects, the rectangle being measured in the
// display size (as GetVideoSize tells it) of the turned and mirrored picture.
[[nodiscard]] TexturePart PartOfSource(const PictureRect& source, PictureSize display,
                                       const Orientation& orientation);

// The clockwise rotation (0, 90, 180, 270) that a container's 3x3 display matrix asks for, in the
// fixed-point form of libavutil; other angles are taken to the nearest of these.
[[nodiscard]] int RotationOfDisplayMatrix(const std::array<std::int32_t, 9>& matrix);

// How many samples along one axis one output pixel has to average so that nothing is skipped: 1 up to a
// reduction by 2 (bilinear filtering covers two texels), 2 up to 4, else 4.
[[nodiscard]] int TapsFor(double sourceTexels, double outputPixels);

} // namespace brindlecast
