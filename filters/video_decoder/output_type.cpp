#include "filters/video_decoder/output_type.h"

#include <cstdlib>
#include <limits>

namespace brindlecast {
namespace {

// The subtype of a FOURCC; P010 has no name in every SDK.
constexpr GUID kSubtypeP010 = {0x30313050, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

constexpr PixelFormat kFormats[] = {PixelFormat::kNv12, PixelFormat::kP010, PixelFormat::kYv12,
                                    PixelFormat::kYuy2, PixelFormat::kAyuv, PixelFormat::kRgb32};

constexpr int RoundUpToEven(int size) {
    return (size + 1) & ~1;
}

void FillBitmap(BITMAPINFOHEADER& bitmap, PixelFormat format, const VideoShape& shape) {
    bitmap.biSize = sizeof(BITMAPINFOHEADER);
    bitmap.biWidth = RoundUpToEven(shape.width);
    bitmap.biHeight = RoundUpToEven(shape.height);
    bitmap.biPlanes = 1;
    bitmap.biBitCount = static_cast<WORD>(BitsPerPixel(format));
    bitmap.biCompression = format == PixelFormat::kRgb32 ? BI_RGB : SubtypeOf(format).Data1;
    bitmap.biSizeImage = static_cast<DWORD>(PictureBytes(format, bitmap.biWidth, bitmap.biHeight));
}

struct Header {
    const BITMAPINFOHEADER* bitmap = nullptr;
    RECT source{};
    RECT target{};
};

Header ReadHeader(const AM_MEDIA_TYPE& type) {
    if (const auto* info = MediaType::FormatOf<VIDEOINFOHEADER2>(type, FORMAT_VideoInfo2)) {
        return {&info->bmiHeader, info->rcSource, info->rcTarget};
    }
    if (const auto* info = MediaType::FormatOf<VIDEOINFOHEADER>(type, FORMAT_VideoInfo)) {
        return {&info->bmiHeader, info->rcSource, info->rcTarget};
    }
    return {};
}

bool IsEmpty(const RECT& rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

// An empty rectangle stands for the whole bitmap.
bool IsPicture(const RECT& rect, int width, int height) {
    return IsEmpty(rect) || (rect.left == 0 && rect.top == 0 && rect.right == width && rect.bottom == height);
}

} // namespace

const GUID& SubtypeOf(PixelFormat format) {
    switch (format) {
    case PixelFormat::kNv12: return MEDIASUBTYPE_NV12;
    case PixelFormat::kP010: return kSubtypeP010;
    case PixelFormat::kYv12: return MEDIASUBTYPE_YV12;
    case PixelFormat::kYuy2: return MEDIASUBTYPE_YUY2;
    case PixelFormat::kAyuv: return MEDIASUBTYPE_AYUV;
    case PixelFormat::kRgb32: break;
    }
    return MEDIASUBTYPE_RGB32;
}

std::optional<PixelFormat> PixelFormatOf(const GUID& subtype) {
    for (const PixelFormat format : kFormats) {
        if (subtype == SubtypeOf(format)) {
            return format;
        }
    }
    return std::nullopt;
}

MediaType MakeOutputType(PixelFormat format, const VideoShape& shape, REFERENCE_TIME frameDuration,
                         bool extended) {
    MediaType type(MEDIATYPE_Video, SubtypeOf(format));
    const RECT picture = {0, 0, shape.width, shape.height};
    const BITMAPINFOHEADER* bitmap = nullptr;
    if (extended) {
        auto* info = reinterpret_cast<VIDEOINFOHEADER2*>(
            type.AllocateFormat(FORMAT_VideoInfo2, sizeof(VIDEOINFOHEADER2)));
        info->rcSource = info->rcTarget = picture;
        info->AvgTimePerFrame = frameDuration;
        info->dwInterlaceFlags = shape.interlaceFlags;
        info->dwPictAspectRatioX = static_cast<DWORD>(shape.aspectX);
        info->dwPictAspectRatioY = static_cast<DWORD>(shape.aspectY);
        info->dwControlFlags = shape.controlFlags;
        FillBitmap(info->bmiHeader, format, shape);
        bitmap = &info->bmiHeader;
    } else {
        auto* info = reinterpret_cast<VIDEOINFOHEADER*>(
            type.AllocateFormat(FORMAT_VideoInfo, sizeof(VIDEOINFOHEADER)));
        info->rcSource = info->rcTarget = picture;
        info->AvgTimePerFrame = frameDuration;
        FillBitmap(info->bmiHeader, format, shape);
        bitmap = &info->bmiHeader;
    }
    type.Edit().bFixedSizeSamples = TRUE;
    type.Edit().bTemporalCompression = FALSE;
    type.Edit().lSampleSize = bitmap->biSizeImage;
    return type;
}

std::optional<PictureBuffer> ReadOutputType(const AM_MEDIA_TYPE& type, int width, int height) {
    if (type.majortype != MEDIATYPE_Video) {
        return std::nullopt;
    }
    const auto format = PixelFormatOf(type.subtype);
    const Header header = ReadHeader(type);
    if (!format || !header.bitmap || header.bitmap->biHeight == std::numeric_limits<LONG>::min()) {
        return std::nullopt;
    }
    PictureBuffer buffer;
    buffer.format = *format;
    buffer.rowPixels = header.bitmap->biWidth;
    buffer.rows = std::abs(header.bitmap->biHeight);
    buffer.bottomUp = *format == PixelFormat::kRgb32 && header.bitmap->biHeight > 0;
    const std::size_t bytes = PictureBytes(buffer.format, buffer.rowPixels, buffer.rows);
    const bool fits = buffer.rowPixels >= width && buffer.rows >= height && bytes > 0 &&
                      bytes <= static_cast<std::size_t>(std::numeric_limits<LONG>::max());
    // A bitmap wider than the picture must say by its source rectangle which part is the picture.
    const bool padded = buffer.rowPixels > RoundUpToEven(width) || buffer.rows > RoundUpToEven(height);
    const bool tells = IsPicture(header.source, width, height) && IsPicture(header.target, width, height) &&
                       (!padded || !IsEmpty(header.source) || !IsEmpty(header.target));
    return fits && tells ? std::optional(buffer) : std::nullopt;
}

} // namespace brindlecast
