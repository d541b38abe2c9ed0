#include "filters/core/video_shape.h"

#include "filters/core/picture_color.h"
#include "tests/unit/video_test_stream.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(VideoShape, ControlFlagsHaveTheFieldsOfTheExtendedFormat) {
    // Nothing known: no flags at all.
    EXPECT_EQ(ControlFlagsFor(AVCOL_RANGE_UNSPECIFIED, AVCOL_SPC_UNSPECIFIED, AVCOL_PRI_UNSPECIFIED,
                              AVCOL_TRC_UNSPECIFIED, AVCHROMA_LOC_UNSPECIFIED),
              0U);
    // HDR10: limited range 2 at 12, BT.2020 matrix 4 at 15, primaries 9 at 22, PQ 15 at 27, siting 7 at 8.
    EXPECT_EQ(ControlFlagsFor(AVCOL_RANGE_MPEG, AVCOL_SPC_BT2020_NCL, AVCOL_PRI_BT2020, AVCOL_TRC_SMPTE2084,
                              AVCHROMA_LOC_TOPLEFT),
              0x81U | 7U << 8 | 2U << 12 | 4U << 15 | 9U << 22 | 15U << 27);
    EXPECT_EQ(ControlFlagsFor(AVCOL_RANGE_MPEG, AVCOL_SPC_BT709, AVCOL_PRI_BT709, AVCOL_TRC_BT709,
                              AVCHROMA_LOC_LEFT),
              0x81U | 5U << 8 | 2U << 12 | 1U << 15 | 2U << 22 | 5U << 27);
    EXPECT_EQ(ControlFlagsFor(AVCOL_RANGE_JPEG, AVCOL_SPC_SMPTE170M, AVCOL_PRI_SMPTE170M,
                              AVCOL_TRC_ARIB_STD_B67, AVCHROMA_LOC_CENTER),
              0x81U | 1U << 8 | 1U << 12 | 2U << 15 | 5U << 22 | 16U << 27);
}

TEST(VideoShape, TheRendererReadsWhatTheDecoderWrites) {
    const ColorInfo color =
        ColorFromControlFlags(ControlFlagsFor(AVCOL_RANGE_JPEG, AVCOL_SPC_SMPTE240M, AVCOL_PRI_UNSPECIFIED,
                                              AVCOL_TRC_UNSPECIFIED, AVCHROMA_LOC_TOPLEFT));
    EXPECT_EQ(color.matrix, YuvMatrixKind::kSmpte240);
    EXPECT_EQ(color.range, NominalRange::kFull);
    EXPECT_EQ(color.siting, (ChromaSiting{true, true}));
}

TEST(VideoShape, TheSettingDecidesWhoseAspectCounts) {
    const AVRational none{0, 1};
    const AVRational square{1, 1};
    const AVRational wide{4, 3};
    const AVRational wider{16, 11};
    struct Case {
        AVRational container, stream;
        AspectSource source;
        AVRational expected;
    };
    const Case cases[] = {
        {wide, wider, AspectSource::kContainer, wide},     {none, wider, AspectSource::kContainer, wider},
        {square, wider, AspectSource::kContainer, square}, {wide, wider, AspectSource::kStream, wider},
        {wide, none, AspectSource::kStream, wide},         {wide, wider, AspectSource::kAutomatic, wide},
        {square, wider, AspectSource::kAutomatic, wider},  {none, wider, AspectSource::kAutomatic, wider},
        {square, none, AspectSource::kAutomatic, square},
    };
    for (const Case& c : cases) {
        const AVRational got = PixelAspect(c.container, c.stream, c.source);
        EXPECT_EQ(av_cmp_q(got, c.expected), 0) << got.num << ':' << got.den;
    }
}

TEST(VideoShape, APicturesShapeIsReduced) {
    const FramePtr picture = MakeTestPicture(AV_PIX_FMT_YUV420P, 240, 180, 0);
    picture->sample_aspect_ratio = {4, 3};
    picture->interlaced_frame = 1;
    picture->top_field_first = 1;
    const VideoShape shape = ShapeOf(*picture, {0, 1}, AspectSource::kAutomatic, false);
    EXPECT_EQ(shape.width, 240);
    EXPECT_EQ(shape.height, 180);
    EXPECT_EQ(shape.aspectX, 16);
    EXPECT_EQ(shape.aspectY, 9);
    EXPECT_EQ(shape.controlFlags, 0U);
    EXPECT_EQ(shape.interlaceFlags, 0x85U);
    picture->sample_aspect_ratio = {0, 1};
    EXPECT_EQ(ShapeOf(*picture, {0, 1}, AspectSource::kAutomatic, false).aspectX, 4);
    picture->sample_aspect_ratio = {2147483647, 1};
    EXPECT_GT(ShapeOf(*picture, {0, 1}, AspectSource::kStream, false).aspectX, 0);
}

TEST(VideoShape, FullRangeFormatsAndRgbAreToldAsFullRange) {
    const FramePtr picture = MakeTestPicture(AV_PIX_FMT_YUV420P, 16, 16, 0);
    picture->format = AV_PIX_FMT_YUVJ420P;
    EXPECT_EQ((ShapeOf(*picture, {0, 1}, AspectSource::kAutomatic, false).controlFlags >> 12) & 7U, 1U);
    picture->format = AV_PIX_FMT_YUV420P;
    picture->color_range = AVCOL_RANGE_MPEG;
    picture->colorspace = AVCOL_SPC_BT709;
    const auto rgb = ShapeOf(*picture, {0, 1}, AspectSource::kAutomatic, true).controlFlags;
    EXPECT_EQ((rgb >> 12) & 7U, 1U);
    EXPECT_EQ((rgb >> 15) & 7U, 0U);
}

TEST(VideoShape, TenBitStreamsAreKnownBeforeTheFirstPicture) {
    struct Case {
        AVCodecID codec;
        std::vector<std::uint8_t> extradata;
        AVPixelFormat expected;
    };
    const Case cases[] = {
        {AV_CODEC_ID_H264, {1, 110, 0, 40, 0xFF}, AV_PIX_FMT_YUV420P10},
        {AV_CODEC_ID_H264, {1, 100, 0, 40, 0xFF}, AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_H264, {1, 110}, AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_H264, {}, AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_AV1, {0x81, 0x08, 0x4C, 0x00}, AV_PIX_FMT_YUV420P10},
        {AV_CODEC_ID_AV1, {0x81, 0x08, 0x0C, 0x00}, AV_PIX_FMT_YUV420P},
    };
    for (const Case& c : cases) {
        const CodecContextPtr context(avcodec_alloc_context3(nullptr));
        context->codec_id = c.codec;
        context->extradata =
            static_cast<std::uint8_t*>(av_mallocz(c.extradata.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        std::copy(c.extradata.begin(), c.extradata.end(), context->extradata);
        context->extradata_size = static_cast<int>(c.extradata.size());
        EXPECT_EQ(ExpectedFormat(*context), c.expected);
    }
    const CodecContextPtr context(avcodec_alloc_context3(nullptr));
    context->pix_fmt = AV_PIX_FMT_YUV422P;
    EXPECT_EQ(ExpectedFormat(*context), AV_PIX_FMT_YUV422P);
}

} // namespace
} // namespace brindlecast
