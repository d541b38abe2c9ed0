#include "filters/core/video_picture.h"

#include "tests/unit/video_test_stream.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr std::uint8_t kUntouched = 0xA5;

// A picture in a buffer whose rows are longer and more than the picture's, and what lies behind the buffer.
struct Written {
    std::vector<std::uint8_t> bytes;
    PictureBuffer buffer;
    std::size_t size = 0;

    Written(PixelFormat format, int rowPixels, int rows, bool bottomUp = false) {
        size = PictureBytes(format, rowPixels, rows);
        bytes.assign(size + 64, kUntouched);
        buffer = {bytes.data(), format, rowPixels, rows, bottomUp};
    }
    [[nodiscard]] bool IsUntouchedBehind() const {
        return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(size), bytes.end(),
                           [](std::uint8_t byte) { return byte == kUntouched; });
    }
    [[nodiscard]] int At(std::size_t offset) const { return bytes[offset]; }
    [[nodiscard]] int At16(std::size_t offset) const { return bytes[offset] | bytes[offset + 1] << 8; }
};

int Sample(const AVFrame& picture, int plane, int x, int row) {
    return picture.data[plane][std::ptrdiff_t{row} * picture.linesize[plane] + x];
}
int Sample16(const AVFrame& picture, int plane, int x, int row) {
    return Sample(picture, plane, 2 * x, row) | Sample(picture, plane, 2 * x + 1, row) << 8;
}

struct Size {
    int width;
    int height;
};
constexpr Size kSizes[] = {{64, 48}, {62, 46}, {33, 17}, {1, 1}};

int Even(int size) {
    return (size + 1) / 2 * 2;
}

TEST(VideoPicture, Nv12InterleavesChromaAndKeepsEverySample) {
    for (const Size& size : kSizes) {
        const FramePtr picture = MakeTestPicture(AV_PIX_FMT_YUV420P, size.width, size.height, 3);
        const int row = Even(size.width) + 10;
        const int rows = Even(size.height) + 4;
        Written out(PixelFormat::kNv12, row, rows);
        PictureWriter writer;
        ASSERT_TRUE(writer.Write(*picture, out.buffer));
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                ASSERT_EQ(out.At(static_cast<std::size_t>(y * row + x)), Sample(*picture, 0, x, y));
                const auto chroma = static_cast<std::size_t>(rows * row + y / 2 * row + x / 2 * 2);
                ASSERT_EQ(out.At(chroma), Sample(*picture, 1, x / 2, y / 2));
                ASSERT_EQ(out.At(chroma + 1), Sample(*picture, 2, x / 2, y / 2));
            }
        }
        EXPECT_TRUE(out.IsUntouchedBehind());
    }
}

TEST(VideoPicture, Yv12HasVBeforeU) {
    for (const Size& size : kSizes) {
        const FramePtr picture = MakeTestPicture(AV_PIX_FMT_YUV420P, size.width, size.height, 5);
        const int row = Even(size.width) + 6;
        const int rows = Even(size.height) + 2;
        Written out(PixelFormat::kYv12, row, rows);
        PictureWriter writer;
        ASSERT_TRUE(writer.Write(*picture, out.buffer));
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                ASSERT_EQ(out.At(static_cast<std::size_t>(y * row + x)), Sample(*picture, 0, x, y));
                const auto v = static_cast<std::size_t>(rows * row + y / 2 * (row / 2) + x / 2);
                ASSERT_EQ(out.At(v), Sample(*picture, 2, x / 2, y / 2));
                ASSERT_EQ(out.At(v + static_cast<std::size_t>(rows / 2 * (row / 2))),
                          Sample(*picture, 1, x / 2, y / 2));
            }
        }
        EXPECT_TRUE(out.IsUntouchedBehind());
    }
}

TEST(VideoPicture, PairsOfChromaAreTakenApart) {
    for (const Size& size : kSizes) {
        const FramePtr picture = MakeTestPicture(AV_PIX_FMT_NV12, size.width, size.height, 4);
        const int row = Even(size.width);
        const int rows = Even(size.height);
        Written out(PixelFormat::kYv12, row, rows);
        PictureWriter writer;
        ASSERT_TRUE(writer.Write(*picture, out.buffer));
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                ASSERT_EQ(out.At(static_cast<std::size_t>(y * row + x)), Sample(*picture, 0, x, y));
                const auto v = static_cast<std::size_t>(rows * row + y / 2 * (row / 2) + x / 2);
                ASSERT_EQ(out.At(v), Sample(*picture, 1, x / 2 * 2 + 1, y / 2));
                ASSERT_EQ(out.At(v + static_cast<std::size_t>(rows / 2 * (row / 2))),
                          Sample(*picture, 1, x / 2 * 2, y / 2));
            }
        }
        EXPECT_TRUE(out.IsUntouchedBehind());
    }
}

TEST(VideoPicture, P010HasTheBitsAtTheTop) {
    for (const Size& size : kSizes) {
        const FramePtr picture = MakeTestPicture(AV_PIX_FMT_YUV420P10, size.width, size.height, 1);
        const int row = Even(size.width) + 2;
        const int rows = Even(size.height);
        Written out(PixelFormat::kP010, row, rows);
        PictureWriter writer;
        ASSERT_TRUE(writer.Write(*picture, out.buffer));
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                ASSERT_EQ(out.At16(static_cast<std::size_t>(2 * (y * row + x))), Sample16(*picture, 0, x, y)
                                                                                     << 6);
                const auto chroma = static_cast<std::size_t>(2 * (rows * row + y / 2 * row + x / 2 * 2));
                ASSERT_EQ(out.At16(chroma), Sample16(*picture, 1, x / 2, y / 2) << 6);
                ASSERT_EQ(out.At16(chroma + 2), Sample16(*picture, 2, x / 2, y / 2) << 6);
            }
        }
        EXPECT_TRUE(out.IsUntouchedBehind());
    }
}

// Grey of one value, with chroma that differs.
FramePtr Uniform(AVPixelFormat format, int y, int u, int v) {
    FramePtr picture = MakeTestPicture(format, 32, 16, 0);
    const int values[] = {y, u, v};
    for (int plane = 0; plane < 3; ++plane) {
        for (int row = 0; row < (plane == 0 ? 16 : format == AV_PIX_FMT_YUV420P ? 8 : 16); ++row) {
            std::memset(picture->data[plane] + std::ptrdiff_t{row} * picture->linesize[plane], values[plane],
                        plane == 0 || format == AV_PIX_FMT_YUV444P ? 32 : 16);
        }
    }
    return picture;
}

TEST(VideoPicture, PackedFormatsHaveTheirSamplesInOrder) {
    for (const AVPixelFormat source : {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV444P}) {
        const FramePtr picture = Uniform(source, 90, 60, 200);
        PictureWriter writer;
        Written yuy2(PixelFormat::kYuy2, 32, 16);
        ASSERT_TRUE(writer.Write(*picture, yuy2.buffer));
        Written ayuv(PixelFormat::kAyuv, 34, 16);
        ASSERT_TRUE(writer.Write(*picture, ayuv.buffer));
        for (const std::size_t pixel : {0U, 8U, 30U}) {
            EXPECT_EQ(yuy2.At(2 * pixel), 90);
            EXPECT_EQ(yuy2.At(2 * pixel + 1), 60);
            EXPECT_EQ(yuy2.At(2 * pixel + 3), 200);
            const std::size_t lastRow = 15 * 34;
            EXPECT_EQ(ayuv.At(4 * (lastRow + pixel)), 200);
            EXPECT_EQ(ayuv.At(4 * (lastRow + pixel) + 1), 60);
            EXPECT_EQ(ayuv.At(4 * (lastRow + pixel) + 2), 90);
            EXPECT_EQ(ayuv.At(4 * (lastRow + pixel) + 3), 255);
        }
        EXPECT_TRUE(yuy2.IsUntouchedBehind());
        EXPECT_TRUE(ayuv.IsUntouchedBehind());
    }
}

TEST(VideoPicture, RgbFollowsMatrixAndRange) {
    struct Case {
        AVColorSpace matrix;
        AVColorRange range;
        int red, green, blue; // of Y 120, U 90, V 200, by the matrices' definitions
    };
    const Case cases[] = {
        {AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, 250, 91, 41},
        {AVCOL_SPC_SMPTE170M, AVCOL_RANGE_MPEG, 236, 77, 44},
        {AVCOL_SPC_BT709, AVCOL_RANGE_JPEG, 233, 93, 49},
        {AVCOL_SPC_SMPTE170M, AVCOL_RANGE_JPEG, 221, 82, 53},
    };
    for (const Case& c : cases) {
        const FramePtr picture = Uniform(AV_PIX_FMT_YUV420P, 120, 90, 200);
        picture->colorspace = c.matrix;
        picture->color_range = c.range;
        PictureWriter writer;
        Written out(PixelFormat::kRgb32, 32, 16);
        ASSERT_TRUE(writer.Write(*picture, out.buffer));
        EXPECT_NEAR(out.At(0), c.blue, 2) << c.matrix << ' ' << c.range;
        EXPECT_NEAR(out.At(1), c.green, 2) << c.matrix << ' ' << c.range;
        EXPECT_NEAR(out.At(2), c.red, 2) << c.matrix << ' ' << c.range;
    }
}

TEST(VideoPicture, RgbCanBeWrittenBottomUp) {
    FramePtr picture = Uniform(AV_PIX_FMT_YUV420P, 40, 128, 128);
    for (int row = 0; row < 4; ++row) {
        std::memset(picture->data[0] + std::ptrdiff_t{row} * picture->linesize[0], 220, 32);
    }
    PictureWriter writer;
    Written topDown(PixelFormat::kRgb32, 32, 16);
    Written bottomUp(PixelFormat::kRgb32, 32, 16, true);
    ASSERT_TRUE(writer.Write(*picture, topDown.buffer));
    ASSERT_TRUE(writer.Write(*picture, bottomUp.buffer));
    constexpr std::size_t kRow = 32 * 4;
    for (std::size_t row = 0; row < 16; ++row) {
        EXPECT_EQ(
            std::memcmp(topDown.bytes.data() + row * kRow, bottomUp.bytes.data() + (15 - row) * kRow, kRow),
            0);
    }
    EXPECT_GT(topDown.At(0), 200);
    EXPECT_LT(bottomUp.At(0), 60);
}

TEST(VideoPicture, FullRangeStaysFullRangeInYuv) {
    for (const AVPixelFormat format : {AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUVJ422P}) {
        const FramePtr picture =
            Uniform(format == AV_PIX_FMT_YUVJ420P ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV422P, 250, 5, 128);
        picture->format = format;
        PictureWriter writer;
        Written out(PixelFormat::kNv12, 32, 16);
        ASSERT_TRUE(writer.Write(*picture, out.buffer));
        EXPECT_EQ(out.At(0), 250);
        EXPECT_EQ(out.At(32 * 16), 5);
    }
}

TEST(VideoPicture, EveryFormatTakesEveryCommonSource) {
    for (const AVPixelFormat source :
         {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV422P10,
          AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUV444P10, AV_PIX_FMT_YUV410P, AV_PIX_FMT_NV12, AV_PIX_FMT_GRAY8,
          AV_PIX_FMT_GBRP, AV_PIX_FMT_RGB24, AV_PIX_FMT_BGRA}) {
        for (const PixelFormat format : PreferredFormats(source)) {
            for (const Size& size : {Size{64, 48}, Size{33, 17}}) {
                const FramePtr picture = MakeTestPicture(source, size.width, size.height, 2);
                PictureWriter writer;
                Written out(format, Even(size.width), Even(size.height));
                EXPECT_TRUE(writer.Write(*picture, out.buffer)) << source << ' ' << static_cast<int>(format);
                EXPECT_TRUE(out.IsUntouchedBehind()) << source << ' ' << static_cast<int>(format);
            }
        }
    }
}

TEST(VideoPicture, WhatDoesNotFitIsRefused) {
    const FramePtr picture = MakeTestPicture(AV_PIX_FMT_YUV420P, 64, 48, 0);
    PictureWriter writer;
    for (const Size& size : {Size{62, 48}, Size{64, 46}}) {
        Written out(PixelFormat::kNv12, size.width, size.height);
        EXPECT_FALSE(writer.Write(*picture, out.buffer));
    }
    Written out(PixelFormat::kNv12, 64, 48);
    out.buffer.data = nullptr;
    EXPECT_FALSE(writer.Write(*picture, out.buffer));
    EXPECT_EQ(PictureBytes(PixelFormat::kNv12, 0, 48), 0U);
    EXPECT_EQ(PictureBytes(PixelFormat::kNv12, 64, -1), 0U);
    EXPECT_EQ(PictureBytes(PixelFormat::kNv12, 63, 48), 0U);
    EXPECT_EQ(PictureBytes(PixelFormat::kRgb32, 1 << 30, 1 << 30), 0U);
    EXPECT_EQ(PictureBytes(PixelFormat::kNv12, 64, 48), 64U * 48 * 3 / 2);
    EXPECT_EQ(PictureBytes(PixelFormat::kP010, 64, 48), 64U * 48 * 3);
    EXPECT_EQ(PictureBytes(PixelFormat::kYuy2, 64, 48), 64U * 48 * 2);
    EXPECT_EQ(PictureBytes(PixelFormat::kAyuv, 63, 47), 63U * 47 * 4);
}

TEST(VideoPicture, TheBestFormatComesFirst) {
    using P = PixelFormat;
    const std::vector<P> usual = {P::kNv12, P::kP010, P::kYv12, P::kYuy2, P::kAyuv, P::kRgb32};
    EXPECT_EQ(PreferredFormats(AV_PIX_FMT_YUV420P), usual);
    EXPECT_EQ(PreferredFormats(AV_PIX_FMT_YUV444P), usual);
    EXPECT_EQ(PreferredFormats(AV_PIX_FMT_NONE), usual);
    EXPECT_EQ(PreferredFormats(AV_PIX_FMT_YUV420P10),
              (std::vector<P>{P::kP010, P::kNv12, P::kYv12, P::kYuy2, P::kAyuv, P::kRgb32}));
    EXPECT_EQ(PreferredFormats(AV_PIX_FMT_GBRP).front(), P::kRgb32);
}

} // namespace
} // namespace brindlecast
