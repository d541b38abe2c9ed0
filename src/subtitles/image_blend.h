#pragma once

#include "subtitles/sub_pic.h"

#include <cstdint>

namespace brindlecast {

// One colour seen through a mask, as a renderer of text gives it. Owns nothing.
struct AlphaImage {
    int width = 0;  // pixels
    int height = 0; // pixels
    int stride = 0; // bytes from one row to the next; the last row may end after `width`
    const std::uint8_t* bitmap = nullptr; // a byte of coverage per pixel
    std::uint32_t color = 0;              // 0xRRGGBBTT, TT being transparency: 0 is opaque
    int dstX = 0;                         // where the image's left edge lies in the picture, may be outside
    int dstY = 0;
};

// Draws the part of `image` that lies on `target`, in colours multiplied by alpha, and widens `bounds` to
// hold that part even where no pixel changes. An image without size or bitmap, or wholly outside, does
// nothing.
void BlendImage(const AlphaImage& image, const SubPicDesc& target, Rect& bounds);

} // namespace brindlecast
