#include "subtitles/image_blend.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

namespace brindlecast {

namespace {

constexpr int kPixelBytes = 4;

// A pixel as it lies in memory, blue, green, red, alpha, taken as one number: as all machines that this runs
// on have it, blue in the lowest byte.
using Pixel = std::uint32_t;
static_assert(std::endian::native == std::endian::little);

constexpr Pixel AlphaOf(Pixel pixel) {
    return pixel >> 24;
}

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

// The same for every other byte of a pixel at once, each with 16 bits of room. 1 more than the sum that is to
// be divided by 255, and its 256th part, make a sum whose upper byte is the quotient.
constexpr Pixel MultiplyBytes(Pixel bytes, unsigned part) {
    constexpr Pixel kLowBytes = 0x00FF00FF;
    const Pixel sums = (bytes & kLowBytes) * part + 0x00800080;
    return ((sums + ((sums >> 8) & kLowBytes)) >> 8) & kLowBytes;
}

constexpr Pixel MultiplyPixel(Pixel pixel, unsigned part) {
    return MultiplyBytes(pixel, part) | MultiplyBytes(pixel >> 8, part) << 8;
}

// Every coverage's pixel in one colour: less work than one by one in all but the smallest images.
std::array<Pixel, 256> PixelsByCoverage(std::uint32_t color) {
    const unsigned opacity = 255 - (color & 0xFF);
    std::array<Pixel, 256> pixels{};
    for (unsigned coverage = 0; coverage < pixels.size(); ++coverage) {
        const unsigned alpha = MultiplyParts(coverage, opacity);
        pixels[coverage] = alpha << 24;
        for (unsigned i = 0; i < 3; ++i) {
            pixels[coverage] |= MultiplyParts((color >> (8 * (i + 1))) & 0xFF, alpha) << (8 * i);
        }
    }
    return pixels;
}

void BlendPixel(Pixel from, std::uint8_t* onto) {
    Pixel present = 0;
    std::memcpy(&present, onto, sizeof(present));
    if (AlphaOf(present) == 0) {
        present = from;
    } else {
        // No byte of the sum passes 255: the two are at most their parts of it.
        present = MultiplyPixel(present, 255U - AlphaOf(from)) + from;
    }
    std::memcpy(onto, &present, sizeof(present));
}

// Most of a text's images is empty: eight pixels at once are looked at for that.
void BlendRow(const std::array<Pixel, 256>& pixels, const std::uint8_t* coverage, std::int64_t length,
              std::uint8_t* onto) {
    constexpr std::int64_t kAtOnce = 8;
    for (std::int64_t x = 0; x < length;) {
        std::uint64_t several = 1;
        if (x + kAtOnce <= length) {
            std::memcpy(&several, coverage + x, sizeof(several));
        }
        if (several == 0) {
            x += kAtOnce;
            continue;
        }
        for (const std::int64_t end = std::min(x + kAtOnce, length); x < end; ++x) {
            if (const Pixel from = pixels[coverage[x]]; AlphaOf(from) != 0) {
                BlendPixel(from, onto + x * kPixelBytes);
            }
        }
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
        BlendRow(pixels, coverage, columns.length, onto);
    }
    Widen(bounds, columns, rows);
}

} // namespace brindlecast
