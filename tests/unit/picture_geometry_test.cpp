#include "filters/core/picture_geometry.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

TEST(PictureGeometryTest, RotationIsNormalised) {
    EXPECT_EQ(NormalizedRotation(0), 0);
    EXPECT_EQ(NormalizedRotation(90), 90);
    EXPECT_EQ(NormalizedRotation(-90), 270);
    EXPECT_EQ(NormalizedRotation(450), 90);
    EXPECT_EQ(NormalizedRotation(45), 0);
    EXPECT_EQ(NormalizedRotation(-1), 270);
    EXPECT_EQ(NormalizedRotation(INT64_MIN) % 90, 0);
}

TEST(PictureGeometryTest, DisplaySizeKeepsTheHeight) {
    EXPECT_EQ(DisplaySize({720, 576}, 16, 9, 0), (PictureSize{1024, 576}));
    EXPECT_EQ(DisplaySize({720, 576}, 16, 9, 90), (PictureSize{576, 1024}));
    EXPECT_EQ(DisplaySize({720, 480}, 4, 3, 0), (PictureSize{640, 480}));
    EXPECT_EQ(DisplaySize({1920, 1080}, 0, 0, 270), (PictureSize{1080, 1920}));
    EXPECT_EQ(DisplaySize({1920, 1080}, 5, 0, 180), (PictureSize{1920, 1080}));
    EXPECT_EQ(DisplaySize({1920, 1080}, 1, 2147483647, 0).width, 1);
    EXPECT_EQ(DisplaySize({1920, 1080}, 2147483647, 1, 0).width, kMaxPictureSide);
}

// The stored corners that stand at top left, top right, bottom left, bottom right.
TEST(PictureGeometryTest, CornersUnderRotationAndFlip) {
    const TextureCoordinate tl{0, 0};
    const TextureCoordinate tr{1, 0};
    const TextureCoordinate bl{0, 1};
    const TextureCoordinate br{1, 1};
    using Corners = std::array<TextureCoordinate, 4>;
    EXPECT_EQ(CornerCoordinates({0, false}, {}), (Corners{tl, tr, bl, br}));
    EXPECT_EQ(CornerCoordinates({90, false}, {}), (Corners{bl, tl, br, tr}));
    EXPECT_EQ(CornerCoordinates({180, false}, {}), (Corners{br, bl, tr, tl}));
    EXPECT_EQ(CornerCoordinates({270, false}, {}), (Corners{tr, br, tl, bl}));
    EXPECT_EQ(CornerCoordinates({0, true}, {}), (Corners{tr, tl, br, bl}));
    EXPECT_EQ(CornerCoordinates({90, true}, {}), (Corners{tl, bl, tr, br}));
}

void ExpectPart(const TexturePart& part, double left, double top, double right, double bottom) {
    EXPECT_NEAR(part.left, left, 1e-6);
    EXPECT_NEAR(part.top, top, 1e-6);
    EXPECT_NEAR(part.right, right, 1e-6);
    EXPECT_NEAR(part.bottom, bottom, 1e-6);
}

TEST(PictureGeometryTest, SourceRectangle) {
    ExpectPart(PartOfSource({10, 20, 50, 60}, {100, 200}, {0, false}), 0.1, 0.1, 0.5, 0.3);
    ExpectPart(PartOfSource({10, 20, 50, 60}, {100, 200}, {180, false}), 0.5, 0.7, 0.9, 0.9);
    // At 90 degrees the screen's x runs up the stored picture.
    ExpectPart(PartOfSource({10, 20, 50, 60}, {100, 200}, {90, false}), 0.1, 0.5, 0.3, 0.9);
    ExpectPart(PartOfSource({10, 20, 50, 60}, {100, 200}, {270, false}), 0.7, 0.1, 0.9, 0.5);
    ExpectPart(PartOfSource({10, 20, 50, 60}, {100, 200}, {0, true}), 0.5, 0.1, 0.9, 0.3);
    ExpectPart(PartOfSource({5, 5, 5, 9}, {100, 200}, {0, false}), 0, 0, 1, 1);
}

TEST(PictureGeometryTest, DisplayMatrix) {
    constexpr std::int32_t kOne = 65536;
    EXPECT_EQ(RotationOfDisplayMatrix({kOne, 0, 0, 0, kOne, 0, 0, 0, 1 << 30}), 0);
    EXPECT_EQ(RotationOfDisplayMatrix({0, kOne, 0, -kOne, 0, 0, 0, 0, 1 << 30}), 90);
    EXPECT_EQ(RotationOfDisplayMatrix({-kOne, 0, 0, 0, -kOne, 0, 0, 0, 1 << 30}), 180);
    EXPECT_EQ(RotationOfDisplayMatrix({0, -kOne, 0, kOne, 0, 0, 0, 0, 1 << 30}), 270);
    EXPECT_EQ(RotationOfDisplayMatrix({INT32_MIN, INT32_MIN, 0, 0, 0, 0, 0, 0, 0}), 180);
}

TEST(PictureGeometryTest, Taps) {
    EXPECT_EQ(TapsFor(1920, 1920), 1);
    EXPECT_EQ(TapsFor(1920, 960), 1);
    EXPECT_EQ(TapsFor(1920, 959), 2);
    EXPECT_EQ(TapsFor(1920, 480), 2);
    EXPECT_EQ(TapsFor(1920, 479), 4);
    EXPECT_EQ(TapsFor(1920, 0), 1);
}

} // namespace
} // namespace brindlecast
