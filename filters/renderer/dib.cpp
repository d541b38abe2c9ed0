#include "filters/renderer/dib.h"

#include <windows.h>

#include <cstring>

namespace brindlecast {

namespace {

std::size_t PixelBytes(PictureSize size) {
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4;
}

} // namespace

std::size_t DibBytes(PictureSize size) {
    return sizeof(BITMAPINFOHEADER) + PixelBytes(size);
}

void WriteDib(const CapturedImage& image, void* out) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof(header);
    header.biWidth = image.size.width;
    header.biHeight = image.size.height;
    header.biPlanes = 1;
    header.biBitCount = 32;
    header.biCompression = BI_RGB;
    header.biSizeImage = static_cast<DWORD>(PixelBytes(image.size));
    std::memcpy(out, &header, sizeof(header));
    auto* target = static_cast<std::uint8_t*>(out) + sizeof(header);
    const auto rowBytes = static_cast<std::size_t>(image.size.width) * 4;
    for (auto row = static_cast<std::size_t>(image.size.height); row-- > 0; target += rowBytes) {
        std::memcpy(target, image.pixels.data() + row * rowBytes, rowBytes);
    }
}

} // namespace brindlecast
