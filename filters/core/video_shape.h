#pragma once

#include "filters/core/audio_video_types.h"
#include "filters/core/picture_format.h"

#include <cstdint>

extern "C" {
#include <libavutil/pixfmt.h>
#include <libavutil/rational.h>
}

namespace brindlecast {

// Which statement about the shape of pixels counts, by the numbers of the decoder's StreamAR setting.
enum class AspectSource {
    kContainer = 0, // the container's, the stream's own where the container makes none
    kStream = 1,    // the stream's own, the container's where it makes none
    kAutomatic = 2, // the container's where it states other than square pixels, else the stream's own
};

// What a receiver of pictures must know besides the memory's layout.
struct VideoShape {
    int width = 0;
    int height = 0;
    // Shape of the whole picture.
    int aspectX = 0;
    int aspectY = 0;
    // Control flags of a VIDEOINFOHEADER2: colours as the DXVA_ExtendedFormat bits, 0 where nothing is
    // known.
    std::uint32_t controlFlags = 0;
    // Flags of a VIDEOINFOHEADER2: AMINTERLACE_*.
    std::uint32_t interlaceFlags = 0;

    bool operator==(const VideoShape&) const = default;
};

// The colours of a stream or picture, as control flags.
[[nodiscard]] std::uint32_t ControlFlagsFor(AVColorRange range, AVColorSpace matrix,
                                            AVColorPrimaries primaries,
                                            AVColorTransferCharacteristic transfer, AVChromaLocation chroma);

// `container` is the container's shape of a pixel, 0/1 when it makes no statement.
[[nodiscard]] AVRational PixelAspect(AVRational container, AVRational stream, AspectSource source);

// The shape of a decoded picture. `forRgb`: it will be handed out as RGB, where YUV matrix and range mean
// nothing.
[[nodiscard]] VideoShape ShapeOf(const AVFrame& picture, AVRational containerAspect, AspectSource source,
                                 bool forRgb);

// The shape of a stream before the first picture, as far as it is known.
[[nodiscard]] VideoShape ShapeOf(const AVCodecParameters& parameters, const AVCodecContext& context);

// The format of the pictures that a stream will yield, as far as its set-up data tell; 8-bit 4:2:0 when they
// don't.
[[nodiscard]] AVPixelFormat ExpectedFormat(const AVCodecContext& context);

} // namespace brindlecast
