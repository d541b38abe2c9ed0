#include "tests/filters/roads/captured_image.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace brindlecast::testing {

Image FromBitmapFile(const BitmapBytes& bytes) {
    Image image;
    if (bytes == nullptr || bytes->size() < 54) {
        return image;
    }
    BITMAPINFOHEADER header{};
    std::memcpy(&header, bytes->data() + 14, sizeof(header));
    image.width = header.biWidth;
    image.height = header.biHeight;
    const auto row = static_cast<std::size_t>(header.biWidth) * 4;
    if (header.biBitCount != 32 || bytes->size() < 54 + row * static_cast<std::size_t>(header.biHeight)) {
        return {};
    }
    for (int y = header.biHeight - 1; y >= 0; --y) {
        const auto at = bytes->begin() + 54 + static_cast<std::ptrdiff_t>(row) * y;
        image.pixels.insert(image.pixels.end(), at, at + static_cast<std::ptrdiff_t>(row));
    }
    return image;
}

double Psnr(const Image& one, const Image& other) {
    if (one.width != other.width || one.height != other.height || one.pixels.size() != other.pixels.size()) {
        return 0.0;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < one.pixels.size(); ++i) {
        const double difference = i % 4 == 3 ? 0.0 : one.pixels[i] - other.pixels[i];
        sum += difference * difference;
    }
    const double mean = sum / (static_cast<double>(one.pixels.size()) * 0.75);
    return mean > 0.0 ? std::min(99.0, 10.0 * std::log10(255.0 * 255.0 / mean)) : 99.0;
}

} // namespace brindlecast::testing
