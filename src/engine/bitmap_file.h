#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace brindlecast {

// A complete BMP file from its magic "BM" on, rows bottom-up. Null or empty: there is no picture.
using BitmapBytes = std::shared_ptr<std::vector<std::uint8_t>>;

// Sizes of BITMAPFILEHEADER and BITMAPINFOHEADER.
inline constexpr std::size_t kBitmapFileHeaderBytes = 14;
inline constexpr std::size_t kBitmapInfoHeaderBytes = 40;

// Bytes of the colour table that a picture of this depth carries.
[[nodiscard]] std::size_t PaletteBytes(unsigned bitsPerPixel);

// A BMP file of a renderer's buffer: either such a file already, which is copied, or a BITMAPINFOHEADER with
// colour table and rows, whose top-down rows are turned round. Null when `data` is null, shorter than a
// header, or shorter than its own colour table. Any bytes are safe.
[[nodiscard]] BitmapBytes NormalizeBitmap(const void* data, std::size_t size);

// A BMP file of a BITMAPINFOHEADER with colour table and bottom-up rows, which are taken as they stand.
[[nodiscard]] BitmapBytes BitmapFileFromDib(std::span<const std::uint8_t> dib);

} // namespace brindlecast
