#pragma once

#include "tests/support/frame_mark.h"

#include <vector>

namespace brindlecast::testing {

// A picture reduced to a few thousand values, three a pixel (B, G, R), 0..255.
struct Thumbnail {
    int width = 0;
    int height = 0;
    std::vector<float> values;
};

// The part of the image that `rect` covers, every pixel of the result being the mean of what falls on it.
// `rect` must lie inside the image and be no smaller than the result.
[[nodiscard]] Thumbnail Shrink(const BgraView& image, const PixelRect& rect, int width, int height);

// Mean square of the differences; the sizes must agree.
[[nodiscard]] double MeanSquare(const Thumbnail& one, const Thumbnail& other);

// Like Shrink, from nine points of each part only: for quick comparisons of places.
[[nodiscard]] Thumbnail Sample(const BgraView& image, const PixelRect& rect, int width, int height);

// Variance of the liveliest channel: 0 for a plain picture.
[[nodiscard]] double Variance(const Thumbnail& picture);

} // namespace brindlecast::testing
