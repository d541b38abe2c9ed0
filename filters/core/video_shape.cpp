#include "filters/core/video_shape.h"

#include <span>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace brindlecast {
namespace {

// Control flags: the lowest byte holds flags of its own, then come the fields of the extended colour format.
constexpr std::uint32_t kFlagsUsed = 0x01;
constexpr std::uint32_t kColorInfoPresent = 0x80;
constexpr int kChromaShift = 8;
constexpr int kRangeShift = 12;
constexpr int kMatrixShift = 15;
constexpr int kPrimariesShift = 22;
constexpr int kTransferShift = 27;

constexpr std::uint32_t kInterlaceIsInterlaced = 0x01;
constexpr std::uint32_t kInterlaceField1First = 0x04;
constexpr std::uint32_t kInterlaceDisplayBobOrWeave = 0x80;

std::uint32_t ChromaBits(AVChromaLocation chroma) {
    constexpr std::uint32_t kHorizontallyCosited = 4;
    constexpr std::uint32_t kVerticallyCosited = 2;
    constexpr std::uint32_t kVerticallyAlignedPlanes = 1;
    switch (chroma) {
    case AVCHROMA_LOC_LEFT: return kHorizontallyCosited | kVerticallyAlignedPlanes;
    case AVCHROMA_LOC_CENTER: return kVerticallyAlignedPlanes;
    case AVCHROMA_LOC_TOPLEFT: return kHorizontallyCosited | kVerticallyCosited | kVerticallyAlignedPlanes;
    case AVCHROMA_LOC_TOP: return kVerticallyCosited | kVerticallyAlignedPlanes;
    default: return 0;
    }
}

std::uint32_t RangeBits(AVColorRange range) {
    switch (range) {
    case AVCOL_RANGE_JPEG: return 1;
    case AVCOL_RANGE_MPEG: return 2;
    default: return 0;
    }
}

std::uint32_t MatrixBits(AVColorSpace matrix) {
    switch (matrix) {
    case AVCOL_SPC_BT709: return 1;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M: return 2;
    case AVCOL_SPC_SMPTE240M: return 3;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL: return 4;
    default: return 0;
    }
}

std::uint32_t PrimariesBits(AVColorPrimaries primaries) {
    switch (primaries) {
    case AVCOL_PRI_BT709: return 2;
    case AVCOL_PRI_BT470M: return 3;
    case AVCOL_PRI_BT470BG: return 4;
    case AVCOL_PRI_SMPTE170M: return 5;
    case AVCOL_PRI_SMPTE240M: return 6;
    case AVCOL_PRI_BT2020: return 9;
    case AVCOL_PRI_SMPTE428: return 10;
    case AVCOL_PRI_SMPTE431:
    case AVCOL_PRI_SMPTE432: return 11;
    default: return 0;
    }
}

std::uint32_t TransferBits(AVColorTransferCharacteristic transfer) {
    switch (transfer) {
    case AVCOL_TRC_LINEAR: return 1;
    case AVCOL_TRC_GAMMA22: return 4;
    case AVCOL_TRC_BT709:
    case AVCOL_TRC_SMPTE170M: return 5;
    case AVCOL_TRC_SMPTE240M: return 6;
    case AVCOL_TRC_IEC61966_2_1: return 7;
    case AVCOL_TRC_GAMMA28: return 8;
    case AVCOL_TRC_LOG: return 9;
    case AVCOL_TRC_LOG_SQRT: return 10;
    case AVCOL_TRC_BT2020_10:
    case AVCOL_TRC_BT2020_12: return 13;
    case AVCOL_TRC_SMPTE2084: return 15;
    case AVCOL_TRC_ARIB_STD_B67: return 16;
    default: return 0;
    }
}

bool IsStated(AVRational aspect) {
    return aspect.num > 0 && aspect.den > 0;
}

void SetAspect(VideoShape& shape, AVRational pixel) {
    constexpr std::int64_t kLargest = 0xFFFF;
    const AVRational stated = IsStated(pixel) ? pixel : AVRational{1, 1};
    av_reduce(&shape.aspectX, &shape.aspectY, std::int64_t{shape.width} * stated.num,
              std::int64_t{shape.height} * stated.den, kLargest);
}

bool IsFullRangeFormat(int format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P ||
           format == AV_PIX_FMT_YUVJ440P || format == AV_PIX_FMT_YUVJ411P;
}

// H.264's set-up data begin with the profile; those from High 10 on hold more than 8 bits.
bool IsHighBitDepthH264(std::span<const std::uint8_t> extradata) {
    constexpr int kHigh10 = 110;
    constexpr int kHigh422 = 122;
    return extradata.size() > 4 && extradata[0] == 1 && (extradata[1] == kHigh10 || extradata[1] == kHigh422);
}

// AV1's set-up data state the depth in the third byte.
bool IsHighBitDepthAv1(std::span<const std::uint8_t> extradata) {
    constexpr int kHighBitDepth = 0x40;
    return extradata.size() > 3 && extradata[0] == 0x81 && (extradata[2] & kHighBitDepth) != 0;
}

} // namespace

std::uint32_t ControlFlagsFor(AVColorRange range, AVColorSpace matrix, AVColorPrimaries primaries,
                              AVColorTransferCharacteristic transfer, AVChromaLocation chroma) {
    const std::uint32_t bits = RangeBits(range) << kRangeShift | MatrixBits(matrix) << kMatrixShift |
                               PrimariesBits(primaries) << kPrimariesShift |
                               TransferBits(transfer) << kTransferShift | ChromaBits(chroma) << kChromaShift;
    return bits == 0 ? 0 : bits | kFlagsUsed | kColorInfoPresent;
}

AVRational PixelAspect(AVRational container, AVRational stream, AspectSource source) {
    const bool square = container.num == container.den;
    switch (source) {
    case AspectSource::kContainer: return IsStated(container) ? container : stream;
    case AspectSource::kStream: return IsStated(stream) ? stream : container;
    case AspectSource::kAutomatic: break;
    }
    return (IsStated(container) && !square) || !IsStated(stream) ? container : stream;
}

VideoShape ShapeOf(const AVFrame& picture, AVRational containerAspect, AspectSource source, bool forRgb) {
    VideoShape shape;
    shape.width = picture.width;
    shape.height = picture.height;
    SetAspect(shape, PixelAspect(containerAspect, picture.sample_aspect_ratio, source));
    const AVColorRange range = IsFullRangeFormat(picture.format) ? AVCOL_RANGE_JPEG : picture.color_range;
    shape.controlFlags =
        forRgb ? ControlFlagsFor(AVCOL_RANGE_JPEG, AVCOL_SPC_UNSPECIFIED, picture.color_primaries,
                                 picture.color_trc, AVCHROMA_LOC_UNSPECIFIED)
               : ControlFlagsFor(range, picture.colorspace, picture.color_primaries, picture.color_trc,
                                 picture.chroma_location);
    if (picture.interlaced_frame) {
        shape.interlaceFlags = kInterlaceIsInterlaced | kInterlaceDisplayBobOrWeave |
                               (picture.top_field_first ? kInterlaceField1First : 0);
    }
    return shape;
}

VideoShape ShapeOf(const AVCodecParameters& parameters, const AVCodecContext& context) {
    VideoShape shape;
    shape.width = parameters.width;
    shape.height = parameters.height;
    SetAspect(shape, PixelAspect(parameters.sample_aspect_ratio, context.sample_aspect_ratio,
                                 AspectSource::kAutomatic));
    shape.controlFlags = ControlFlagsFor(context.color_range, context.colorspace, context.color_primaries,
                                         context.color_trc, context.chroma_sample_location);
    return shape;
}

AVPixelFormat ExpectedFormat(const AVCodecContext& context) {
    const AVPixFmtDescriptor* known = av_pix_fmt_desc_get(context.pix_fmt);
    if (known && !(known->flags & AV_PIX_FMT_FLAG_HWACCEL)) {
        return context.pix_fmt;
    }
    const std::span<const std::uint8_t> extradata(context.extradata,
                                                  static_cast<std::size_t>(context.extradata_size));
    const bool high = (context.codec_id == AV_CODEC_ID_H264 && IsHighBitDepthH264(extradata)) ||
                      (context.codec_id == AV_CODEC_ID_AV1 && IsHighBitDepthAv1(extradata));
    return high ? AV_PIX_FMT_YUV420P10 : AV_PIX_FMT_YUV420P;
}

} // namespace brindlecast
