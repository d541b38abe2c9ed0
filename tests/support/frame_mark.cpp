#include "tests/support/frame_mark.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace brindlecast::testing {
namespace {

using MarkBits = std::array<bool, kMarkCells>;

constexpr int kNumberBits = 16;
constexpr int kCheckBits = 8;
static_assert(kMarkCells == 1 + kNumberBits + kCheckBits + 1);

// In steps of 8-bit luma. Coding loss and blur at 160 pixels width leave well over 100 of the 255; a fade or
// a low contrast setting may take most of that.
constexpr double kLeastContrast = 32.0;
constexpr double kLeastSeparation = 16.0;

std::uint8_t CheckOf(std::uint16_t number) {
    unsigned remainder = 0xA5;
    for (int bit = kNumberBits - 1; bit >= 0; --bit) {
        const bool carry = ((remainder & 0x80U) != 0) != (((number >> bit) & 1) != 0);
        remainder = ((remainder << 1) & 0xFFU) ^ (carry ? 0x07U : 0U);
    }
    return static_cast<std::uint8_t>(remainder);
}

MarkBits BitsOf(std::uint16_t number) {
    MarkBits bits{};
    bits.front() = true;
    bits.back() = false;
    const unsigned word = (static_cast<unsigned>(number) << kCheckBits) | CheckOf(number);
    for (int i = 0; i < kNumberBits + kCheckBits; ++i) {
        bits[static_cast<std::size_t>(1 + i)] = ((word >> (kNumberBits + kCheckBits - 1 - i)) & 1U) != 0;
    }
    return bits;
}

std::optional<int> NumberOf(const MarkBits& bits) {
    unsigned word = 0;
    for (int i = 0; i < kNumberBits + kCheckBits; ++i) {
        word = (word << 1) | (bits[static_cast<std::size_t>(1 + i)] ? 1U : 0U);
    }
    const auto number = static_cast<std::uint16_t>(word >> kCheckBits);
    if (BitsOf(number) != bits) {
        return std::nullopt;
    }
    return number;
}

// The index-th of `count` equal columns of an area.
RelativeRect Column(RelativeRect area, int index, int count) {
    const double width = (area.right - area.left) / count;
    return {area.left + width * index, area.top, area.left + width * (index + 1), area.bottom};
}

RelativeRect UpperHalf(RelativeRect area) {
    return {area.left, area.top, area.right, (area.top + area.bottom) / 2};
}

RelativeRect LowerHalf(RelativeRect area) {
    return {area.left, (area.top + area.bottom) / 2, area.right, area.bottom};
}

template <typename View>
void DrawMark(const View& image, std::uint16_t number) {
    constexpr Rgb kLight{255, 255, 255};
    constexpr Rgb kDark{0, 0, 0};
    constexpr Rgb kQuiet{96, 96, 96};
    FillArea(image, {0, kMarkArea.top, 1, kMarkArea.bottom}, kQuiet);
    const MarkBits bits = BitsOf(number);
    for (int i = 0; i < kMarkCells; ++i) {
        const RelativeRect cell = Column(kMarkArea, i, kMarkCells);
        const bool bit = bits[static_cast<std::size_t>(i)];
        FillArea(image, UpperHalf(cell), bit ? kLight : kDark);
        FillArea(image, LowerHalf(cell), bit ? kDark : kLight);
    }
}

template <typename View>
void DrawPatches(const View& image) {
    constexpr int kCount = static_cast<int>(kPatchColours.size());
    for (int i = 0; i < kCount; ++i) {
        FillArea(image, Column(kPatchArea, i, kCount), kPatchColours[static_cast<std::size_t>(i)]);
    }
}

PixelRect ToPixels(RelativeRect area, int width, int height) {
    const auto edge = [](double fraction, int size) {
        return std::clamp(static_cast<int>(std::lround(fraction * size)), 0, size);
    };
    const int left = edge(area.left, width);
    const int top = edge(area.top, height);
    return {left, top, edge(area.right, width) - left, edge(area.bottom, height) - top};
}

bool LiesInside(const PixelRect& picture, const BgraView& image) {
    return image.data != nullptr && picture.width > 0 && picture.height > 0 && picture.left >= 0 &&
           picture.top >= 0 && picture.left <= image.width - picture.width &&
           picture.top <= image.height - picture.height;
}

struct MeanColour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

// Mean of the middle half (in both directions) of an area, away from its blurred edges.
MeanColour MeanOfMiddle(const BgraView& image, const PixelRect& picture, RelativeRect area) {
    const double quarterWidth = (area.right - area.left) / 4;
    const double quarterHeight = (area.bottom - area.top) / 4;
    const auto first = [](int origin, int size, double fraction) {
        return origin + static_cast<int>(std::floor(fraction * size));
    };
    const auto past = [](int origin, int size, double fraction) {
        return origin + static_cast<int>(std::ceil(fraction * size));
    };
    const int left = first(picture.left, picture.width, area.left + quarterWidth);
    const int right = past(picture.left, picture.width, area.right - quarterWidth);
    const int top = first(picture.top, picture.height, area.top + quarterHeight);
    const int bottom = past(picture.top, picture.height, area.bottom - quarterHeight);
    MeanColour mean;
    for (int y = top; y < bottom; ++y) {
        const std::uint8_t* row = image.data + image.stride * y;
        for (int x = left; x < right; ++x) {
            mean.blue += row[x * 4];
            mean.green += row[x * 4 + 1];
            mean.red += row[x * 4 + 2];
        }
    }
    const double count = static_cast<double>(right - left) * (bottom - top);
    return {mean.red / count, mean.green / count, mean.blue / count};
}

double Brightness(const MeanColour& colour) {
    return 0.299 * colour.red + 0.587 * colour.green + 0.114 * colour.blue;
}

void FillPlane(std::uint8_t* plane, std::ptrdiff_t stride, const PixelRect& rect, std::uint8_t value) {
    for (int y = rect.top; y < rect.top + rect.height; ++y) {
        std::fill_n(plane + stride * y + rect.left, rect.width, value);
    }
}

} // namespace

std::array<std::uint8_t, 3> ToYuv(Rgb colour, YuvMatrix matrix, bool fullRange) {
    const double red = matrix == YuvMatrix::Bt709 ? 0.2126 : 0.299;
    const double blue = matrix == YuvMatrix::Bt709 ? 0.0722 : 0.114;
    const double luma = red * colour.red + (1 - red - blue) * colour.green + blue * colour.blue;
    const double cb = (colour.blue - luma) / (2 * (1 - blue));
    const double cr = (colour.red - luma) / (2 * (1 - red));
    const double lumaScale = fullRange ? 1.0 : 219.0 / 255.0;
    const double chromaScale = fullRange ? 1.0 : 224.0 / 255.0;
    const auto sample = [](double value) {
        return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
    };
    return {sample((fullRange ? 0 : 16) + luma * lumaScale), sample(128 + cb * chromaScale),
            sample(128 + cr * chromaScale)};
}

void FillArea(const Rgb24View& image, RelativeRect area, Rgb colour) {
    const PixelRect rect = ToPixels(area, image.width, image.height);
    for (int y = rect.top; y < rect.top + rect.height; ++y) {
        std::uint8_t* pixel = image.data + image.stride * y + static_cast<std::ptrdiff_t>(rect.left) * 3;
        for (int x = 0; x < rect.width; ++x, pixel += 3) {
            pixel[0] = colour.red;
            pixel[1] = colour.green;
            pixel[2] = colour.blue;
        }
    }
}

void FillArea(const PlanarView& image, RelativeRect area, Rgb colour) {
    const auto yuv = ToYuv(colour, image.matrix, image.fullRange);
    FillPlane(image.planes[0], image.strides[0], ToPixels(area, image.width, image.height), yuv[0]);
    const int chromaWidth = (image.width + (1 << image.chromaShiftX) - 1) >> image.chromaShiftX;
    const int chromaHeight = (image.height + (1 << image.chromaShiftY) - 1) >> image.chromaShiftY;
    const PixelRect chroma = ToPixels(area, chromaWidth, chromaHeight);
    FillPlane(image.planes[1], image.strides[1], chroma, yuv[1]);
    FillPlane(image.planes[2], image.strides[2], chroma, yuv[2]);
}

void DrawFrameMark(const Rgb24View& image, std::uint16_t number) {
    DrawMark(image, number);
}
void DrawFrameMark(const PlanarView& image, std::uint16_t number) {
    DrawMark(image, number);
}
void DrawColourPatches(const Rgb24View& image) {
    DrawPatches(image);
}
void DrawColourPatches(const PlanarView& image) {
    DrawPatches(image);
}

std::optional<int> ReadFrameMark(const BgraView& image, const PixelRect& picture) {
    if (!LiesInside(picture, image)) {
        return std::nullopt;
    }
    MarkBits bits{};
    double darkestLight = 255;
    double lightestDark = 0;
    for (int i = 0; i < kMarkCells; ++i) {
        const RelativeRect cell = Column(kMarkArea, i, kMarkCells);
        const double upper = Brightness(MeanOfMiddle(image, picture, UpperHalf(cell)));
        const double lower = Brightness(MeanOfMiddle(image, picture, LowerHalf(cell)));
        if (std::abs(upper - lower) < kLeastContrast) {
            return std::nullopt;
        }
        bits[static_cast<std::size_t>(i)] = upper > lower;
        darkestLight = std::min(darkestLight, std::max(upper, lower));
        lightestDark = std::max(lightestDark, std::min(upper, lower));
    }
    if (darkestLight - lightestDark < kLeastSeparation) {
        return std::nullopt;
    }
    for (const int margin : {-1, kMarkCells}) {
        const RelativeRect cell = Column(kMarkArea, margin, kMarkCells);
        const double upper = Brightness(MeanOfMiddle(image, picture, UpperHalf(cell)));
        const double lower = Brightness(MeanOfMiddle(image, picture, LowerHalf(cell)));
        if (std::abs(upper - lower) > (darkestLight - lightestDark) / 2) {
            return std::nullopt;
        }
    }
    return NumberOf(bits);
}

std::optional<std::array<Rgb, kPatchColours.size()>> ReadColourPatches(const BgraView& image,
                                                                       const PixelRect& picture) {
    if (!LiesInside(picture, image)) {
        return std::nullopt;
    }
    std::array<Rgb, kPatchColours.size()> seen{};
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const RelativeRect area = Column(kPatchArea, static_cast<int>(i), static_cast<int>(seen.size()));
        const MeanColour mean = MeanOfMiddle(image, picture, area);
        seen[i] = {static_cast<std::uint8_t>(std::lround(mean.red)),
                   static_cast<std::uint8_t>(std::lround(mean.green)),
                   static_cast<std::uint8_t>(std::lround(mean.blue))};
    }
    return seen;
}

int LargestPatchError(const std::array<Rgb, kPatchColours.size()>& seen) {
    int largest = 0;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        largest = std::max({largest, std::abs(seen[i].red - kPatchColours[i].red),
                            std::abs(seen[i].green - kPatchColours[i].green),
                            std::abs(seen[i].blue - kPatchColours[i].blue)});
    }
    return largest;
}

PixelRect FitPicture(const PixelRect& window, int displayWidth, int displayHeight) {
    if (window.width <= 0 || window.height <= 0 || displayWidth <= 0 || displayHeight <= 0) {
        return {};
    }
    const double scale = std::min(static_cast<double>(window.width) / displayWidth,
                                  static_cast<double>(window.height) / displayHeight);
    const int width = std::clamp(static_cast<int>(std::lround(displayWidth * scale)), 1, window.width);
    const int height = std::clamp(static_cast<int>(std::lround(displayHeight * scale)), 1, window.height);
    return {window.left + (window.width - width) / 2, window.top + (window.height - height) / 2, width,
            height};
}

PlaybackVerdict JudgePlayback(std::span<const TimedMark> readings, double framesPerSecond, double tolerance) {
    PlaybackVerdict verdict;
    std::set<int> numbers;
    std::optional<int> previous;
    bool falls = false;
    for (const TimedMark& reading : readings) {
        if (!reading.number) {
            continue;
        }
        ++verdict.readable;
        numbers.insert(*reading.number);
        falls = falls || (previous && *reading.number < *previous);
        previous = reading.number;
        const double lag = std::abs(*reading.number / framesPerSecond - reading.seconds);
        verdict.largestLag = std::max(verdict.largestLag, lag);
    }
    verdict.distinct = static_cast<int>(numbers.size());
    verdict.moving = verdict.distinct >= 2 && !falls;
    verdict.inStep = verdict.moving && verdict.readable == static_cast<int>(readings.size()) &&
                     verdict.largestLag <= tolerance;
    return verdict;
}

} // namespace brindlecast::testing
