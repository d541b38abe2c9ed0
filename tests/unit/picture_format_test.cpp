#include "filters/core/picture_format.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

PictureMemory Memory(PixelFormat format, int stride, int lines, PictureRect visible, bool bottomUp = false) {
    return {format, stride, lines, bottomUp, visible};
}

TEST(PictureFormatTest, Nv12WithAWiderRow) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kNv12, 64, 20, {0, 0, 50, 18}));
    ASSERT_EQ(layout.planeCount, 2);
    EXPECT_EQ(layout.planes[0], (PicturePlane{TexelType::kOne8, 0, 64, 50, 18}));
    EXPECT_EQ(layout.planes[1], (PicturePlane{TexelType::kTwo8, 64 * 20, 64, 25, 9}));
    EXPECT_EQ(layout.bytes, 64U * 30);
}

TEST(PictureFormatTest, P010) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kP010, 32, 10, {0, 0, 32, 10}));
    EXPECT_EQ(layout.planes[0], (PicturePlane{TexelType::kOne16, 0, 64, 32, 10}));
    EXPECT_EQ(layout.planes[1], (PicturePlane{TexelType::kTwo16, 640, 64, 16, 5}));
    EXPECT_EQ(layout.bytes, 960U);
}

TEST(PictureFormatTest, Yv12StoresVBeforeU) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kYv12, 16, 4, {0, 0, 16, 4}));
    ASSERT_EQ(layout.planeCount, 3);
    EXPECT_EQ(layout.planes[1], (PicturePlane{TexelType::kOne8, 64 + 16, 8, 8, 2})) << "U";
    EXPECT_EQ(layout.planes[2], (PicturePlane{TexelType::kOne8, 64, 8, 8, 2})) << "V";
    EXPECT_EQ(layout.bytes, 96U);
}

TEST(PictureFormatTest, OddSizesRoundChromaUp) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kNv12, 5, 3, {0, 0, 5, 3}));
    EXPECT_EQ(layout.planes[1], (PicturePlane{TexelType::kTwo8, 15, 6, 3, 2}));
    EXPECT_EQ(layout.bytes, 15U + 12);
}

TEST(PictureFormatTest, Yuy2IsDescribedTwice) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kYuy2, 10, 2, {0, 0, 10, 2}));
    ASSERT_EQ(layout.planeCount, 2);
    EXPECT_EQ(layout.planes[0], (PicturePlane{TexelType::kTwo8, 0, 20, 10, 2}));
    EXPECT_EQ(layout.planes[1], (PicturePlane{TexelType::kFour8, 0, 20, 5, 2}));
    EXPECT_EQ(layout.bytes, 40U);
}

TEST(PictureFormatTest, BottomUpBeginsAtTheLastRow) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kRgb32, 8, 4, {2, 1, 8, 4}, true));
    EXPECT_EQ(layout.planes[0].pitch, -32);
    EXPECT_EQ(layout.planes[0].offset, 96U - 32 + 8);
    EXPECT_EQ(layout.planes[0].width, 6);
    EXPECT_EQ(layout.planes[0].height, 3);
}

TEST(PictureFormatTest, AnOddCropTakesThePixelBefore) {
    const PictureLayout layout = LayoutOf(Memory(PixelFormat::kNv12, 32, 16, {3, 5, 20, 16}));
    EXPECT_EQ(layout.planes[0].offset, 4U * 32 + 2);
    EXPECT_EQ(layout.planes[0].width, 18);
    EXPECT_EQ(layout.planes[1].offset, 32U * 16 + 2 * 32 + 2);
    EXPECT_EQ(layout.planes[1].width, 9);
}

// No plane of any format and crop reaches outside the memory it was computed for.
TEST(PictureFormatTest, PlanesStayInside) {
    for (const PixelFormat format : {PixelFormat::kNv12, PixelFormat::kP010, PixelFormat::kYv12,
                                     PixelFormat::kYuy2, PixelFormat::kAyuv, PixelFormat::kRgb32}) {
        for (int stride = 1; stride <= 7; ++stride) {
            for (int lines = 1; lines <= 5; ++lines) {
                for (int left = 0; left < stride; ++left) {
                    for (int top = 0; top < lines; ++top) {
                        const bool bottomUp = format == PixelFormat::kRgb32 && left % 2 == 0;
                        const PictureMemory memory =
                            Memory(format, stride, lines, {left, top, stride, lines}, bottomUp);
                        ASSERT_TRUE(IsValid(memory));
                        const PictureLayout layout = LayoutOf(memory);
                        for (int i = 0; i < layout.planeCount; ++i) {
                            const PicturePlane& plane = layout.planes[static_cast<std::size_t>(i)];
                            const auto first = static_cast<std::ptrdiff_t>(plane.offset);
                            const std::ptrdiff_t last = first + plane.pitch * (plane.height - 1);
                            const std::ptrdiff_t row = std::ptrdiff_t{plane.width} * TexelBytes(plane.texel);
                            ASSERT_GE(std::min(first, last), 0);
                            ASSERT_LE(std::max(first, last) + row, static_cast<std::ptrdiff_t>(layout.bytes));
                        }
                    }
                }
            }
        }
    }
}

TEST(PictureFormatTest, ContradictionsAreRefused) {
    EXPECT_TRUE(IsValid(Memory(PixelFormat::kNv12, 16, 16, {0, 0, 16, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, 0, 16, {0, 0, 16, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, 16, 0, {0, 0, 16, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, -16, 16, {0, 0, 16, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, 16385, 16, {0, 0, 16, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, 16, 16, {0, 0, 17, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, 16, 16, {-1, 0, 16, 16})));
    EXPECT_FALSE(IsValid(Memory(PixelFormat::kNv12, 16, 16, {8, 0, 8, 16})));
}

} // namespace
} // namespace brindlecast
