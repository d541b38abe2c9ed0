#include "filters/core/picture_color.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

// Half a code of chroma, amplified by the matrix.
constexpr double kTolerance = 0.009;

std::array<double, 3> Apply(const ColorMatrix& matrix, double a, double b, double c) {
    std::array<double, 3> result{};
    for (std::size_t i = 0; i < 3; ++i) {
        result[i] = matrix[i][0] * a + matrix[i][1] * b + matrix[i][2] * c + matrix[i][3];
    }
    return result;
}

void ExpectColor(const std::array<double, 3>& seen, double red, double green, double blue) {
    EXPECT_NEAR(seen[0], red, kTolerance);
    EXPECT_NEAR(seen[1], green, kTolerance);
    EXPECT_NEAR(seen[2], blue, kTolerance);
}

ColorInfo Info(YuvMatrixKind matrix, NominalRange range) {
    return {matrix, range, {}};
}

TEST(PictureColorTest, ControlFlags) {
    // used + colour info present, MPEG-2 siting 5, range 16-235 (2), matrix 709 (1)
    const ColorInfo color = ColorFromControlFlags(0x81U | 5U << 8 | 2U << 12 | 1U << 15);
    EXPECT_EQ(color.matrix, YuvMatrixKind::kBt709);
    EXPECT_EQ(color.range, NominalRange::kLimited);
    EXPECT_TRUE(color.siting.horizontallyCosited);
    EXPECT_FALSE(color.siting.verticallyCosited);
    EXPECT_EQ(ColorFromControlFlags(0x81U | 1U << 12).range, NominalRange::kFull);
    EXPECT_EQ(ColorFromControlFlags(0x81U | 2U << 15).matrix, YuvMatrixKind::kBt601);
    EXPECT_EQ(ColorFromControlFlags(0x81U | 3U << 15).matrix, YuvMatrixKind::kSmpte240);
    EXPECT_EQ(ColorFromControlFlags(0x81U | 4U << 15).matrix, YuvMatrixKind::kBt2020);
    EXPECT_EQ(ColorFromControlFlags(0x81U | 7U << 15).matrix, YuvMatrixKind::kUnknown);
    const ColorInfo mpeg1 = ColorFromControlFlags(0x81U | 1U << 8);
    EXPECT_FALSE(mpeg1.siting.horizontallyCosited);
    EXPECT_TRUE(ColorFromControlFlags(0x81U | 7U << 8).siting.verticallyCosited);
}

TEST(PictureColorTest, ControlFlagsWithoutColours) {
    EXPECT_EQ(ColorFromControlFlags(0), ColorInfo{});
    EXPECT_EQ(ColorFromControlFlags(2U << 12 | 1U << 15), ColorInfo{});
    EXPECT_EQ(ColorFromControlFlags(0x01U | 2U << 12 | 1U << 15), ColorInfo{})
        << "the flag for colours is not set";
    EXPECT_EQ(ColorFromControlFlags(0x80U | 2U << 12 | 1U << 15), ColorInfo{}) << "the field is not in use";
}

TEST(PictureColorTest, UnknownsGoBySize) {
    EXPECT_EQ(WithDefaults({}, {720, 576}).matrix, YuvMatrixKind::kBt601);
    EXPECT_EQ(WithDefaults({}, {1024, 576}).matrix, YuvMatrixKind::kBt601);
    EXPECT_EQ(WithDefaults({}, {1280, 720}).matrix, YuvMatrixKind::kBt709);
    EXPECT_EQ(WithDefaults({}, {720, 577}).matrix, YuvMatrixKind::kBt709);
    EXPECT_EQ(WithDefaults({}, {320, 180}).range, NominalRange::kLimited);
    const ColorInfo known = Info(YuvMatrixKind::kBt2020, NominalRange::kFull);
    EXPECT_EQ(WithDefaults(known, {320, 180}), known);
}

// Codes from the tables of BT.601 and BT.709 for saturated colours.
TEST(PictureColorTest, KnownCodes) {
    const auto at = [](int code) {
        return code / 255.0;
    };
    const ColorMatrix m601 =
        MatrixFor(PixelFormat::kNv12, Info(YuvMatrixKind::kBt601, NominalRange::kLimited));
    ExpectColor(Apply(m601, at(81), at(90), at(240)), 1, 0, 0);
    ExpectColor(Apply(m601, at(145), at(54), at(34)), 0, 1, 0);
    ExpectColor(Apply(m601, at(41), at(240), at(110)), 0, 0, 1);
    ExpectColor(Apply(m601, at(235), at(128), at(128)), 1, 1, 1);
    ExpectColor(Apply(m601, at(16), at(128), at(128)), 0, 0, 0);
    const ColorMatrix m709 =
        MatrixFor(PixelFormat::kNv12, Info(YuvMatrixKind::kBt709, NominalRange::kLimited));
    ExpectColor(Apply(m709, at(63), at(102), at(240)), 1, 0, 0);
    ExpectColor(Apply(m709, at(173), at(42), at(26)), 0, 1, 0);
    ExpectColor(Apply(m709, at(32), at(240), at(118)), 0, 0, 1);
    const ColorMatrix full = MatrixFor(PixelFormat::kNv12, Info(YuvMatrixKind::kBt601, NominalRange::kFull));
    ExpectColor(Apply(full, 1.0, at(128), at(128)), 1, 1, 1);
    ExpectColor(Apply(full, 0.0, at(128), at(128)), 0, 0, 0);
    ExpectColor(Apply(full, at(76), at(85), 1.0), 1, 0, 0);
}

TEST(PictureColorTest, TenBitCodesAreAtTheTop) {
    const auto at = [](int code) {
        return (code << 6) / 65535.0;
    };
    const ColorMatrix limited =
        MatrixFor(PixelFormat::kP010, Info(YuvMatrixKind::kBt2020, NominalRange::kLimited));
    ExpectColor(Apply(limited, at(940), at(512), at(512)), 1, 1, 1);
    ExpectColor(Apply(limited, at(64), at(512), at(512)), 0, 0, 0);
    ExpectColor(Apply(limited, at(294), at(387), at(960)), 1, 0, 0);
    const ColorMatrix full = MatrixFor(PixelFormat::kP010, Info(YuvMatrixKind::kBt709, NominalRange::kFull));
    ExpectColor(Apply(full, at(1023), at(512), at(512)), 1, 1, 1);
}

TEST(PictureColorTest, RgbIsLeftAlone) {
    const ColorMatrix matrix =
        MatrixFor(PixelFormat::kRgb32, Info(YuvMatrixKind::kBt601, NominalRange::kLimited));
    ExpectColor(Apply(matrix, 0.25, 0.5, 0.75), 0.25, 0.5, 0.75);
}

TEST(PictureColorTest, ChromaPlaces) {
    // A luma pixel's middle, as texture coordinate, must meet the middle of the chroma texel that is cosited
    // with it.
    const ChromaMapping left = ChromaMappingFor(PixelFormat::kNv12, {64, 32}, {true, false});
    EXPECT_NEAR((2 * 7 + 0.5) / 64 * left.scaleX + left.offsetX, (7 + 0.5) / 32, 1e-6);
    EXPECT_NEAR((2 * 7 + 1.0) / 32 * left.scaleY + left.offsetY, (7 + 0.5) / 16, 1e-6);
    const ChromaMapping middle = ChromaMappingFor(PixelFormat::kNv12, {64, 32}, {false, false});
    EXPECT_NEAR((2 * 7 + 1.0) / 64 * middle.scaleX + middle.offsetX, (7 + 0.5) / 32, 1e-6);
    const ChromaMapping top = ChromaMappingFor(PixelFormat::kNv12, {64, 32}, {true, true});
    EXPECT_NEAR((2 * 7 + 0.5) / 32 * top.scaleY + top.offsetY, (7 + 0.5) / 16, 1e-6);
    const ChromaMapping odd = ChromaMappingFor(PixelFormat::kNv12, {5, 4}, {false, false});
    EXPECT_NEAR(2.0 / 5 * odd.scaleX + odd.offsetX, 1.0 / 3, 1e-6) << "three texels for five pixels";
    const ChromaMapping yuy2 = ChromaMappingFor(PixelFormat::kYuy2, {64, 32}, {true, false});
    EXPECT_EQ(yuy2.scaleY, 1.0F);
    EXPECT_EQ(yuy2.offsetY, 0.0F);
    const ChromaMapping ayuv = ChromaMappingFor(PixelFormat::kAyuv, {64, 32}, {true, true});
    EXPECT_EQ(ayuv.scaleX, 1.0F);
    EXPECT_EQ(ayuv.offsetX, 0.0F);
}

} // namespace
} // namespace brindlecast
