#include "engine/bitmap_file.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <new>

namespace brindlecast {

namespace {

// Places in the headers.
constexpr std::size_t kFileSizeAt = 2;
constexpr std::size_t kPixelsStartAt = 10;
constexpr std::size_t kWidthAt = 4;
constexpr std::size_t kHeightAt = 8;
constexpr std::size_t kBitCountAt = 14;

constexpr std::array<std::uint8_t, 2> kMagic = {'B', 'M'};
// Deeper pictures have no colour table.
constexpr unsigned kDeepestPalette = 8;
constexpr std::size_t kHeaderBytes = kBitmapFileHeaderBytes + kBitmapInfoHeaderBytes;

// The files are little-endian, and so is every machine that this runs on.
template <class Value>
Value ReadAt(const std::uint8_t* bytes, std::size_t offset) {
    Value value{};
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
}

void Write32(std::uint8_t* bytes, std::size_t offset, std::size_t value) {
    const auto narrow = static_cast<std::uint32_t>(value);
    std::memcpy(bytes + offset, &narrow, sizeof(narrow));
}

// Null when a picture claims more than there is memory for.
BitmapBytes Allocate(std::size_t size) {
    try {
        return std::make_shared<std::vector<std::uint8_t>>(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void WriteFileHeader(std::uint8_t* file, std::size_t fileBytes, std::size_t pixelsStart) {
    std::memcpy(file, kMagic.data(), kMagic.size());
    Write32(file, kFileSizeAt, fileBytes);
    Write32(file, kPixelsStartAt, pixelsStart);
}

void CopyRowsReversed(std::span<const std::uint8_t> source, std::uint8_t* target, std::size_t stride,
                      std::size_t height) {
    for (std::size_t row = 0; row < height; ++row) {
        std::memcpy(target + row * stride, source.data() + (height - 1 - row) * stride, stride);
    }
    const std::size_t rows = stride * height;
    std::ranges::copy(source.subspan(rows), target + rows);
}

} // namespace

std::size_t PaletteBytes(unsigned bitsPerPixel) {
    return bitsPerPixel <= kDeepestPalette ? std::size_t{4} << bitsPerPixel : 0;
}

BitmapBytes NormalizeBitmap(const void* data, std::size_t size) {
    if (data == nullptr || size < kBitmapInfoHeaderBytes) {
        return nullptr;
    }
    const auto* source = static_cast<const std::uint8_t*>(data);
    if (std::equal(kMagic.begin(), kMagic.end(), source)) {
        BitmapBytes copy = Allocate(size);
        if (copy != nullptr) {
            std::memcpy(copy->data(), source, size);
        }
        return copy;
    }
    const std::int64_t signedHeight = ReadAt<std::int32_t>(source, kHeightAt);
    const std::int64_t height = std::abs(signedHeight);
    const unsigned bitCount = ReadAt<std::uint16_t>(source, kBitCountAt);
    const std::size_t palette = PaletteBytes(bitCount);
    if (size < kBitmapInfoHeaderBytes + palette) {
        return nullptr;
    }
    const std::size_t pixelsStart = kHeaderBytes + palette;
    BitmapBytes file = Allocate(kBitmapFileHeaderBytes + size);
    if (file == nullptr) {
        return nullptr;
    }
    WriteFileHeader(file->data(), file->size(), pixelsStart);
    std::uint8_t* const header = file->data() + kBitmapFileHeaderBytes;
    std::memcpy(header, source, kBitmapInfoHeaderBytes + palette);
    Write32(header, kHeightAt, static_cast<std::size_t>(height));

    const std::span pixels(source + kBitmapInfoHeaderBytes + palette,
                           size - kBitmapInfoHeaderBytes - palette);
    const std::int64_t width = ReadAt<std::int32_t>(source, kWidthAt);
    const std::int64_t stride = (static_cast<std::int64_t>(bitCount) * width + 31) / 32 * 4;
    // Divided, since the product of what a header may claim does not fit any integer.
    const bool rowsFit = stride > 0 && height <= static_cast<std::int64_t>(pixels.size()) / stride;
    if (signedHeight < 0 && rowsFit) {
        CopyRowsReversed(pixels, file->data() + pixelsStart, static_cast<std::size_t>(stride),
                         static_cast<std::size_t>(height));
    } else {
        std::ranges::copy(pixels, file->data() + pixelsStart);
    }
    return file;
}

BitmapBytes BitmapFileFromDib(std::span<const std::uint8_t> dib) {
    const bool tellsDepth = dib.size() >= kBitCountAt + sizeof(std::uint16_t);
    const std::size_t palette = tellsDepth ? PaletteBytes(ReadAt<std::uint16_t>(dib.data(), kBitCountAt)) : 0;
    BitmapBytes file = Allocate(kBitmapFileHeaderBytes + dib.size());
    if (file == nullptr) {
        return nullptr;
    }
    WriteFileHeader(file->data(), file->size(), kHeaderBytes + palette);
    std::ranges::copy(dib, file->data() + kBitmapFileHeaderBytes);
    return file;
}

} // namespace brindlecast
