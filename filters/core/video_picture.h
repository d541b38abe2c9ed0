#pragma once

#include "filters/core/audio_video_types.h"
#include "filters/core/picture_format.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

namespace brindlecast {

// Formats for a picture of `source`, the preferred one first: NV12, P010 (first of all for sources of more
// than 8 bits), YV12, YUY2, AYUV, RGB32 (first of all for sources that are RGB).
[[nodiscard]] std::vector<PixelFormat> PreferredFormats(AVPixelFormat source);

// Bytes of one pixel in the first plane; a row of `width` pixels takes width times as many.
[[nodiscard]] int BytesPerPixelInRow(PixelFormat format);

// Bytes of a buffer whose rows hold `rowPixels` pixels (even where chroma has half width); 0 when a size is
// not positive or absurd.
[[nodiscard]] std::size_t PictureBytes(PixelFormat format, int rowPixels, int rows);

// A buffer to write a picture into. Rows are `rowPixels` long and there are `rows` of them, at least as many
// as the picture has; what lies beyond the picture is not written, except for the second row or column of an
// odd picture's chroma.
struct PictureBuffer {
    std::uint8_t* data = nullptr;
    PixelFormat format = PixelFormat::kNv12;
    int rowPixels = 0;
    int rows = 0;
    // Rgb32 only: the last row comes first.
    bool bottomUp = false;
};

// Writes decoded pictures into buffers. Matrix and range of YUV stay what they are; RGB comes in full range.
// One thread at a time.
class PictureWriter {
public:
    // False when the picture can't be converted or does not fit the buffer.
    [[nodiscard]] bool Write(const AVFrame& picture, const PictureBuffer& buffer);

private:
    using Planes = std::array<std::uint8_t*, 4>;
    using Strides = std::array<int, 4>;
    struct ScalerDeleter {
        void operator()(SwsContext* freed) const noexcept { sws_freeContext(freed); }
    };

    [[nodiscard]] bool Scale(const AVFrame& picture, AVPixelFormat target, const Planes& planes,
                             const Strides& strides);
    [[nodiscard]] bool WriteAyuv(const AVFrame& picture, const PictureBuffer& buffer);
    void SetColors(const AVFrame& picture, AVPixelFormat target);

    std::unique_ptr<SwsContext, ScalerDeleter> scaler;
    std::vector<std::uint8_t> fullPlanes;
};

} // namespace brindlecast
