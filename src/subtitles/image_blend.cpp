#include "subtitles/image_blend.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace brindlecast {

namespace {

constexpr int kPixelBytes = 4;

// A pixel in memory order: blue, green, red, alpha.
using Pixel = std::array<std::uint8_t, kPixelBytes>;

// A length that lies on both `length` pixels from `start` and a line of `limit` pixels, and where it begins
// on either.
struct Overlap {
    std::int64_t inImage;
    std::int64_t inPicture;
    std::int64_t length; // below 1 when there is none
};

Overlap Clip(std::int64_t start, std::int64_t length, std::int64_t limit) {
    const std::int64_t cut = std::max<std::int64_t>(-start, 0);
    const std::int64_t shown = start + cut;
    return {cut, shown, std::min(length - cut, limit - shown)};
}

// The product of two parts of 255, rounded.
constexpr unsigned MultiplyParts(unsigned left, unsigned right) {
    return (left * right + 127) / 255;
}

// Every coverage's pixel in one colour: less work than one by one in all but the smallest images.
std::array<Pixel, 256> PixelsByCoverage(std::uint32_t color) {
    const unsigned opacity = 255 - (color & 0xFF);
    std::array<Pixel, 256> pixels{};
    for (unsigned coverage = 0; coverage < pixels.size(); ++coverage) {
        const unsigned alpha = MultiplyParts(coverage, opacity);
        for (unsigned i = 0; i < 3; ++i) {
            pixels[coverage][i] =
                static_cast<std::uint8_t>(MultiplyParts((color >> (8 * (i + 1))) & 0xFF, alpha));
        }
        pixels[coverage][3] = static_cast<std::uint8_t>(alpha);
    }
    return pixels;
}

void BlendPixel(const Pixel& from, std::uint8_t* onto) {
    if (from[3] == 0) {
        return;
    }
    if (onto[3] == 0) {
        std::memcpy(onto, from.data(), from.size());
        return;
    }
    const unsigned rest = 255U - from[3];
    for (std::size_t i = 0; i < from.size(); ++i) {
        onto[i] = static_cast<std::uint8_t>(MultiplyParts(onto[i], rest) + from[i]);
    }
}

void Widen(Rect& bounds, const Overlap& columns, const Overlap& rows) {
    bounds.left = std::min(bounds.left, static_cast<int>(columns.inPicture));
    bounds.top = std::min(bounds.top, static_cast<int>(rows.inPicture));
    bounds.right = std::max(bounds.right, static_cast<int>(columns.inPicture + columns.length));
    bounds.bottom = std::max(bounds.bottom, static_cast<int>(rows.inPicture + rows.length));
}

} // namespace

void BlendImage(const AlphaImage& image, const SubPicDesc& target, Rect& bounds) {
    if (image.width == 0 || image.height == 0 || image.bitmap == nullptr) {
        return;
    }
    const Overlap columns = Clip(image.dstX, image.width, target.width);
    const Overlap rows = Clip(image.dstY, image.height, target.height);
    if (columns.length < 1 || rows.length < 1) {
        return;
    }
    const std::array<Pixel, 256> pixels = PixelsByCoverage(image.color);
    for (std::int64_t y = 0; y < rows.length; ++y) {
        const std::uint8_t* coverage = image.bitmap + (rows.inImage + y) * image.stride + columns.inImage;
        std::uint8_t* onto =
            target.bits + (rows.inPicture + y) * target.pitch + columns.inPicture * kPixelBytes;
        for (std::int64_t x = 0; x < columns.length; ++x, onto += kPixelBytes) {
            BlendPixel(pixels[coverage[x]], onto);
        }
    }
    Widen(bounds, columns, rows);
}

} // namespace brindlecast
