#include "tests/e2e/picture_file.h"

#include "base/win32/gdiplus.h"

#include <cstring>

namespace brindlecast::testing {

std::optional<PictureFile> ReadPictureFile(const std::wstring& path) {
    const GdiplusSession session;
    if (!session) {
        return std::nullopt;
    }
    Gdiplus::Bitmap bitmap(path.c_str());
    PictureFile file;
    file.picture.width = static_cast<int>(bitmap.GetWidth());
    file.picture.height = static_cast<int>(bitmap.GetHeight());
    const Gdiplus::Rect whole(0, 0, file.picture.width, file.picture.height);
    Gdiplus::BitmapData data;
    if (bitmap.GetLastStatus() != Gdiplus::Ok ||
        bitmap.LockBits(&whole, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &data) != Gdiplus::Ok) {
        return std::nullopt;
    }
    const std::size_t rowBytes = static_cast<std::size_t>(file.picture.width) * 4;
    file.picture.pixels.resize(rowBytes * static_cast<std::size_t>(file.picture.height));
    for (int y = 0; y < file.picture.height; ++y) {
        std::memcpy(file.picture.pixels.data() + rowBytes * static_cast<std::size_t>(y),
                    static_cast<const std::uint8_t*>(data.Scan0) +
                        static_cast<std::ptrdiff_t>(data.Stride) * y,
                    rowBytes);
    }
    bitmap.UnlockBits(&data);
    GUID kind{};
    bitmap.GetRawFormat(&kind);
    file.isPng = kind == Gdiplus::ImageFormatPNG;
    return file;
}

} // namespace brindlecast::testing
