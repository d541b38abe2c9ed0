#include "filters/core/video_picture.h"

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace brindlecast {
namespace {

constexpr int HalfUp(int size) {
    return (size + 1) / 2;
}

constexpr bool HasHalfWidthChroma(PixelFormat format) {
    return format != PixelFormat::kAyuv && format != PixelFormat::kRgb32;
}

// The deprecated J formats are the plain ones in full range; range travels apart from the format here.
AVPixelFormat WithoutRange(AVPixelFormat format) {
    switch (format) {
    case AV_PIX_FMT_YUVJ420P: return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P: return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P: return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P: return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P: return AV_PIX_FMT_YUV411P;
    default: return format;
    }
}

bool IsFullRange(const AVFrame& picture) {
    return picture.color_range == AVCOL_RANGE_JPEG ||
           WithoutRange(static_cast<AVPixelFormat>(picture.format)) != picture.format;
}

void CopyRows(std::uint8_t* to, std::ptrdiff_t toStride, const std::uint8_t* from, std::ptrdiff_t fromStride,
              std::size_t bytes, int rows) {
    for (int row = 0; row < rows; ++row) {
        std::memcpy(to + row * toStride, from + row * fromStride, bytes);
    }
}

// Two chroma planes into one of pairs.
void Interleave8(const AVFrame& picture, std::uint8_t* to, std::ptrdiff_t stride) {
    const int width = HalfUp(picture.width);
    for (int row = 0; row < HalfUp(picture.height); ++row) {
        const std::uint8_t* u = picture.data[1] + std::ptrdiff_t{row} * picture.linesize[1];
        const std::uint8_t* v = picture.data[2] + std::ptrdiff_t{row} * picture.linesize[2];
        std::uint8_t* pairs = to + row * stride;
        for (int x = 0; x < width; ++x) {
            *pairs++ = u[x];
            *pairs++ = v[x];
        }
    }
}

// One plane of pairs into two. The scaling library's own way reads past the rows of odd widths.
void Deinterleave8(const AVFrame& picture, std::uint8_t* u, std::uint8_t* v, std::ptrdiff_t stride) {
    const int width = HalfUp(picture.width);
    for (int row = 0; row < HalfUp(picture.height); ++row) {
        const std::uint8_t* pairs = picture.data[1] + std::ptrdiff_t{row} * picture.linesize[1];
        for (int x = 0; x < width; ++x) {
            u[row * stride + x] = *pairs++;
            v[row * stride + x] = *pairs++;
        }
    }
}

// 10 bits at the bottom of 16 to 10 bits at the top.
constexpr std::uint16_t Raise(std::uint16_t sample) {
    return static_cast<std::uint16_t>(sample << 6);
}

const std::uint16_t* Row16(const AVFrame& picture, int plane, int row) {
    return reinterpret_cast<const std::uint16_t*>(picture.data[plane] +
                                                  std::ptrdiff_t{row} * picture.linesize[plane]);
}

void WriteP010(const AVFrame& picture, std::uint8_t* data, std::ptrdiff_t stride, int rows) {
    for (int row = 0; row < picture.height; ++row) {
        const std::uint16_t* from = Row16(picture, 0, row);
        auto* to = reinterpret_cast<std::uint16_t*>(data + row * stride);
        for (int x = 0; x < picture.width; ++x) {
            to[x] = Raise(from[x]);
        }
    }
    std::uint8_t* chroma = data + stride * rows;
    const int width = HalfUp(picture.width);
    for (int row = 0; row < HalfUp(picture.height); ++row) {
        const std::uint16_t* u = Row16(picture, 1, row);
        const std::uint16_t* v = Row16(picture, 2, row);
        auto* to = reinterpret_cast<std::uint16_t*>(chroma + row * stride);
        for (int x = 0; x < width; ++x) {
            *to++ = Raise(u[x]);
            *to++ = Raise(v[x]);
        }
    }
}

// Y, then V, then U.
void WriteYv12(const AVFrame& picture, std::uint8_t* data, std::ptrdiff_t stride, int rows) {
    const std::ptrdiff_t chromaStride = stride / 2;
    std::uint8_t* v = data + stride * rows;
    std::uint8_t* u = v + chromaStride * HalfUp(rows);
    const int chromaRows = HalfUp(picture.height);
    const auto chromaBytes = static_cast<std::size_t>(HalfUp(picture.width));
    CopyRows(data, stride, picture.data[0], picture.linesize[0], static_cast<std::size_t>(picture.width),
             picture.height);
    CopyRows(v, chromaStride, picture.data[2], picture.linesize[2], chromaBytes, chromaRows);
    CopyRows(u, chromaStride, picture.data[1], picture.linesize[1], chromaBytes, chromaRows);
}

bool Fits(const AVFrame& picture, const PictureBuffer& buffer) {
    return buffer.data && picture.width > 0 && picture.height > 0 && buffer.rowPixels >= picture.width &&
           buffer.rows >= picture.height && PictureBytes(buffer.format, buffer.rowPixels, buffer.rows) > 0;
}

} // namespace

std::vector<PixelFormat> PreferredFormats(AVPixelFormat source) {
    std::vector<PixelFormat> formats = {PixelFormat::kNv12, PixelFormat::kP010, PixelFormat::kYv12,
                                        PixelFormat::kYuy2, PixelFormat::kAyuv, PixelFormat::kRgb32};
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(source);
    if (!description) {
        return formats;
    }
    auto toFront = [&](PixelFormat format) {
        const auto found = std::find(formats.begin(), formats.end(), format);
        std::rotate(formats.begin(), found, found + 1);
    };
    if (description->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) {
        toFront(PixelFormat::kRgb32);
    } else if (description->comp[0].depth > 8) {
        toFront(PixelFormat::kP010);
    }
    return formats;
}

int BytesPerPixelInRow(PixelFormat format) {
    switch (format) {
    case PixelFormat::kNv12:
    case PixelFormat::kYv12: return 1;
    case PixelFormat::kP010:
    case PixelFormat::kYuy2: return 2;
    case PixelFormat::kAyuv:
    case PixelFormat::kRgb32: break;
    }
    return 4;
}

std::size_t PictureBytes(PixelFormat format, int rowPixels, int rows) {
    if (rowPixels <= 0 || rows <= 0 || rowPixels > kMaxPictureSide || rows > kMaxPictureSide ||
        (HasHalfWidthChroma(format) && rowPixels % 2 != 0)) {
        return 0;
    }
    const std::size_t row =
        static_cast<std::size_t>(rowPixels) * static_cast<std::size_t>(BytesPerPixelInRow(format));
    const auto luma = row * static_cast<std::size_t>(rows);
    const bool planar =
        format == PixelFormat::kNv12 || format == PixelFormat::kYv12 || format == PixelFormat::kP010;
    return planar ? luma + row * static_cast<std::size_t>(HalfUp(rows)) : luma;
}

bool PictureWriter::Write(const AVFrame& picture, const PictureBuffer& buffer) {
    if (!Fits(picture, buffer)) {
        return false;
    }
    const auto source = WithoutRange(static_cast<AVPixelFormat>(picture.format));
    const int stride = buffer.rowPixels * BytesPerPixelInRow(buffer.format);
    std::uint8_t* const chroma = buffer.data + std::ptrdiff_t{stride} * buffer.rows;
    switch (buffer.format) {
    case PixelFormat::kNv12: {
        if (source == AV_PIX_FMT_YUV420P) {
            CopyRows(buffer.data, stride, picture.data[0], picture.linesize[0],
                     static_cast<std::size_t>(picture.width), picture.height);
            Interleave8(picture, chroma, stride);
            return true;
        }
        const Planes planes = {buffer.data, chroma, nullptr, nullptr};
        const Strides strides = {stride, stride, 0, 0};
        return Scale(picture, AV_PIX_FMT_NV12, planes, strides);
    }
    case PixelFormat::kP010: {
        if (source == AV_PIX_FMT_YUV420P10) {
            WriteP010(picture, buffer.data, stride, buffer.rows);
            return true;
        }
        const Planes planes = {buffer.data, chroma, nullptr, nullptr};
        const Strides strides = {stride, stride, 0, 0};
        return Scale(picture, AV_PIX_FMT_P010LE, planes, strides);
    }
    case PixelFormat::kYv12: {
        if (source == AV_PIX_FMT_YUV420P) {
            WriteYv12(picture, buffer.data, stride, buffer.rows);
            return true;
        }
        std::uint8_t* const u = chroma + std::ptrdiff_t{stride} / 2 * HalfUp(buffer.rows);
        if (source == AV_PIX_FMT_NV12) {
            CopyRows(buffer.data, stride, picture.data[0], picture.linesize[0],
                     static_cast<std::size_t>(picture.width), picture.height);
            Deinterleave8(picture, u, chroma, stride / 2);
            return true;
        }
        const Planes planes = {buffer.data, u, chroma, nullptr};
        const Strides strides = {stride, stride / 2, stride / 2, 0};
        return Scale(picture, AV_PIX_FMT_YUV420P, planes, strides);
    }
    case PixelFormat::kYuy2: {
        const Planes planes = {buffer.data, nullptr, nullptr, nullptr};
        const Strides strides = {stride, 0, 0, 0};
        return Scale(picture, AV_PIX_FMT_YUYV422, planes, strides);
    }
    case PixelFormat::kAyuv: return WriteAyuv(picture, buffer);
    case PixelFormat::kRgb32: break;
    }
    std::uint8_t* const lastRow = buffer.data + std::ptrdiff_t{stride} * (buffer.rows - 1);
    const Planes planes = {buffer.bottomUp ? lastRow : buffer.data, nullptr, nullptr, nullptr};
    const Strides strides = {buffer.bottomUp ? -stride : stride, 0, 0, 0};
    return Scale(picture, AV_PIX_FMT_BGR0, planes, strides);
}

// The scaling library has no such packed format: it makes planes of full size, which are packed here.
bool PictureWriter::WriteAyuv(const AVFrame& picture, const PictureBuffer& buffer) {
    const std::size_t plane =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    // The library's vector loops may write a little past the end of a row.
    constexpr std::size_t kOverrun = 64;
    fullPlanes.resize(3 * plane + kOverrun);
    const Planes planes = {fullPlanes.data(), fullPlanes.data() + plane, fullPlanes.data() + 2 * plane,
                           nullptr};
    const Strides strides = {picture.width, picture.width, picture.width, 0};
    if (!Scale(picture, AV_PIX_FMT_YUV444P, planes, strides)) {
        return false;
    }
    const std::uint8_t* y = planes[0];
    const std::uint8_t* u = planes[1];
    const std::uint8_t* v = planes[2];
    for (int row = 0; row < picture.height; ++row) {
        std::uint8_t* to = buffer.data + std::ptrdiff_t{row} * buffer.rowPixels * 4;
        for (int x = 0; x < picture.width; ++x) {
            *to++ = *v++;
            *to++ = *u++;
            *to++ = *y++;
            *to++ = 0xFF;
        }
    }
    return true;
}

bool PictureWriter::Scale(const AVFrame& picture, AVPixelFormat target, const Planes& planes,
                          const Strides& strides) {
    const auto source = WithoutRange(static_cast<AVPixelFormat>(picture.format));
    if (!sws_isSupportedInput(source)) {
        return false;
    }
    scaler.reset(sws_getCachedContext(
        scaler.release(), picture.width, picture.height, source, picture.width, picture.height, target,
        SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
    if (!scaler) {
        return false;
    }
    SetColors(picture, target);
    return sws_scale(scaler.get(), picture.data, picture.linesize, 0, picture.height, planes.data(),
                     strides.data()) == picture.height;
}

// YUV to YUV keeps matrix and range; between RGB and YUV the picture's own matrix counts, by its size when
// it names none.
void PictureWriter::SetColors(const AVFrame& picture, AVPixelFormat target) {
    const AVPixFmtDescriptor* from = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    const AVPixFmtDescriptor* to = av_pix_fmt_desc_get(target);
    const bool fromRgb = from && (from->flags & AV_PIX_FMT_FLAG_RGB);
    const bool toRgb = to && (to->flags & AV_PIX_FMT_FLAG_RGB);
    int matrix = picture.colorspace;
    if (fromRgb || matrix == AVCOL_SPC_UNSPECIFIED || matrix == AVCOL_SPC_RGB) {
        matrix = picture.height > 576 || fromRgb ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
    const int* coefficients = sws_getCoefficients(matrix);
    const int sourceFull = fromRgb || IsFullRange(picture) ? 1 : 0;
    const int targetFull = toRgb ? 1 : (fromRgb ? 0 : sourceFull);
    constexpr int kUnity = 1 << 16;
    // Not every pair of formats has a conversion of colours; where there is none, there is nothing to set.
    (void)sws_setColorspaceDetails(scaler.get(), coefficients, sourceFull, coefficients, targetFull, 0,
                                   kUnity, kUnity);
}

} // namespace brindlecast
