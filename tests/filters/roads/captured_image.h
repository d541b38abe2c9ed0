#pragma once

#include "engine/bitmap_file.h"

#include <cstdint>
#include <vector>

namespace brindlecast::testing {

// Rows from top to bottom of B, G, R, unused.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

// What the engine captured; empty for null and for anything but 32 bits a pixel.
[[nodiscard]] Image FromBitmapFile(const BitmapBytes& bytes);

// Decibels over the three colours; 99 for equal pictures, 0 for pictures of different sizes.
[[nodiscard]] double Psnr(const Image& one, const Image& other);

} // namespace brindlecast::testing
