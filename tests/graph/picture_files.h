#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Pictures for the tests of screenshots, made and read independently of the code under test. Colours are
// 0xRRGGBB.

// A BITMAPINFOHEADER of 32 bits a pixel with its rows in the order in which they lie in memory; a negative
// height says from the top.
[[nodiscard]] std::vector<std::uint8_t> DeepDib(int width, int height,
                                                const std::vector<std::vector<std::uint32_t>>& rows);

// One of 8 bits a pixel with 256 colours; `indices` are its rows in memory, `width` a multiple of four.
[[nodiscard]] std::vector<std::uint8_t> EightBitDib(int width, int height,
                                                    const std::vector<std::uint8_t>& indices);
[[nodiscard]] std::uint32_t EightBitColor(int index);

[[nodiscard]] std::wstring Hexadecimal(const std::vector<std::uint8_t>& bytes);
[[nodiscard]] std::uint32_t Number32(const std::vector<std::uint8_t>& bytes, std::size_t offset);

[[nodiscard]] std::vector<std::uint32_t> Join(const std::vector<std::vector<std::uint32_t>>& rows);
// The same colours with an alpha of 255.
[[nodiscard]] std::vector<std::uint32_t> Opaque(std::vector<std::uint32_t> colors);

// What a decoder of the system makes of a file: 0xAARRGGBB, rows from the top. Empty when it can't be read.
struct Picture {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint32_t> pixels;
};
[[nodiscard]] Picture DecodePicture(const std::wstring& path);

} // namespace brindlecast::testing
