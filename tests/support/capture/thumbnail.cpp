#include "tests/support/capture/thumbnail.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace brindlecast::testing {

Thumbnail Shrink(const BgraView& image, const PixelRect& rect, int width, int height) {
    Thumbnail result{width, height, {}};
    result.values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    for (int y = 0; y < height; ++y) {
        const int top = rect.top + y * rect.height / height;
        const int bottom = std::max(top + 1, rect.top + (y + 1) * rect.height / height);
        for (int x = 0; x < width; ++x) {
            const int left = rect.left + x * rect.width / width;
            const int right = std::max(left + 1, rect.left + (x + 1) * rect.width / width);
            std::array<float, 3> sum{};
            for (int sourceY = top; sourceY < bottom; ++sourceY) {
                const std::uint8_t* pixel =
                    image.data + image.stride * sourceY + static_cast<std::ptrdiff_t>(left) * 4;
                for (int sourceX = left; sourceX < right; ++sourceX, pixel += 4) {
                    sum[0] += pixel[0];
                    sum[1] += pixel[1];
                    sum[2] += pixel[2];
                }
            }
            const auto count = static_cast<float>((right - left) * (bottom - top));
            for (const float channel : sum) {
                result.values.push_back(channel / count);
            }
        }
    }
    return result;
}

Thumbnail Sample(const BgraView& image, const PixelRect& rect, int width, int height) {
    constexpr int kPoints = 3;
    Thumbnail result{width, height, {}};
    result.values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::array<float, 3> sum{};
            for (int point = 0; point < kPoints * kPoints; ++point) {
                const int partX = 2 * (x * kPoints + point % kPoints) + 1;
                const int partY = 2 * (y * kPoints + point / kPoints) + 1;
                const int sourceX = rect.left + partX * rect.width / (2 * kPoints * width);
                const int sourceY = rect.top + partY * rect.height / (2 * kPoints * height);
                const std::uint8_t* pixel =
                    image.data + image.stride * sourceY + static_cast<std::ptrdiff_t>(sourceX) * 4;
                sum[0] += pixel[0];
                sum[1] += pixel[1];
                sum[2] += pixel[2];
            }
            for (const float channel : sum) {
                result.values.push_back(channel / (kPoints * kPoints));
            }
        }
    }
    return result;
}

double MeanSquare(const Thumbnail& one, const Thumbnail& other) {
    double sum = 0;
    for (std::size_t i = 0; i < one.values.size(); ++i) {
        const double difference = static_cast<double>(one.values[i]) - other.values[i];
        sum += difference * difference;
    }
    return sum / static_cast<double>(std::max<std::size_t>(1, one.values.size()));
}

double Variance(const Thumbnail& picture) {
    double result = 0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        double sum = 0;
        double squares = 0;
        for (std::size_t i = channel; i < picture.values.size(); i += 3) {
            sum += picture.values[i];
            squares += static_cast<double>(picture.values[i]) * picture.values[i];
        }
        const double count = static_cast<double>(picture.values.size()) / 3;
        result = std::max(result, squares / count - (sum / count) * (sum / count));
    }
    return result;
}

} // namespace brindlecast::testing
