#include "subtitles/image_blend.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace brindlecast {

namespace {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();
constexpr std::uint32_t kWhite = 0xFFFFFF00;

// What one coverage in one colour makes of one pixel.
Pixel Blend(std::uint32_t color, std::uint8_t coverage, Pixel onto) {
    const SubPicDesc target{0, 1, 1, 32, 4, onto.data(), {}};
    Rect bounds = kInvertedRect;
    BlendImage({1, 1, 1, &coverage, color, 0, 0}, target, bounds);
    return onto;
}

TEST(ImageBlend, AnEmptyPixelTakesTheColourMultipliedAndRounded) {
    struct Row {
        std::uint32_t color;
        std::uint8_t coverage;
        Pixel expected;
    };
    const Row rows[] = {
        {0xFF804000, 255, {64, 128, 255, 255}},
        // 64, 128 and 255 times 128 over 255 are 32.1, 64.3 and 128
        {0xFF804000, 128, {32, 64, 128, 128}},
        {0xFF804000, 1, {0, 1, 1, 1}},
        // Half transparent: an opacity of 127
        {0xFF804080, 255, {32, 64, 127, 127}},
        {0xFF804080, 2, {0, 1, 1, 1}},
        {0x00000000, 255, {0, 0, 0, 255}},
        {0x01020300, 255, {3, 2, 1, 255}},
        // 127 * 1 + 127 = 254 is not yet 1, 128 * 1 + 127 = 255 is
        {0x7F80FF00, 1, {1, 1, 0, 1}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Blend(row.color, row.coverage, {0, 0, 0, 0}), row.expected)
            << std::hex << row.color << " " << static_cast<int>(row.coverage);
    }
}

TEST(ImageBlend, AlphaDecidesWhetherAPixelIsEmpty) {
    EXPECT_EQ(Blend(0xFF804000, 128, {9, 9, 9, 0}), (Pixel{32, 64, 128, 128}));
    // 127 * 9 + 127 = 1270, 4.98 of 255; 127 * 1 + 127 = 254
    EXPECT_EQ(Blend(0xFF804000, 128, {9, 9, 9, 1}), (Pixel{36, 68, 132, 128}));
}

TEST(ImageBlend, WithoutAlphaThePixelStays) {
    constexpr Pixel kBefore{9, 8, 7, 0};
    EXPECT_EQ(Blend(kWhite, 0, kBefore), kBefore);
    EXPECT_EQ(Blend(0xFFFFFFFF, 255, kBefore), kBefore);
    // An opacity of 127: (1 * 127 + 127) / 255 is 0; of 128: (1 * 128 + 127) / 255 is 1
    EXPECT_EQ(Blend(0xFFFFFF80, 1, kBefore), kBefore);
    EXPECT_EQ(Blend(0xFFFFFF7F, 1, kBefore), (Pixel{1, 1, 1, 1}));
}

TEST(ImageBlend, APixelThatIsThereShinesThroughTheRest) {
    struct Row {
        std::uint32_t color;
        std::uint8_t coverage;
        Pixel onto;
        Pixel expected;
    };
    const Row rows[] = {
        // The rest is 127: 10, 20, 30 and 40 become 5, 10, 15 and 20 with half a unit added before the cut
        {0xFF804000, 128, {10, 20, 30, 40}, {37, 74, 143, 148}},
        {0xFF804000, 255, {10, 20, 30, 40}, {64, 128, 255, 255}},
        // The rest is 254: 100 * 254 + 127 = 25527, 100.1 of 255; 1 * 254 + 127 = 381, 1.5 of 255
        {0x00000000, 1, {100, 1, 0, 255}, {100, 1, 0, 255}},
        {kWhite, 1, {100, 1, 0, 255}, {101, 2, 1, 255}},
        {kWhite, 128, {255, 255, 255, 1}, {255, 255, 255, 128}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Blend(row.color, row.coverage, row.onto), row.expected)
            << std::hex << row.color << " " << static_cast<int>(row.coverage);
    }
}

TEST(ImageBlend, WhiteOnWhiteStaysWhiteAtEveryCoverage) {
    constexpr Pixel kFull{255, 255, 255, 255};
    for (int coverage = 0; coverage < 256; ++coverage) {
        EXPECT_EQ(Blend(kWhite, static_cast<std::uint8_t>(coverage), kFull), kFull) << coverage;
    }
}

// A picture of 5x4 whose rows are 24 bytes long, and an image of 4x3 in rows of 6 whose coverages tell their
// places: 11 12 13 14, 21 22 23 24, 31 32 33 34. In white at full opacity they are the picture's alphas.
class ImageBlendClip : public testing::Test {
protected:
    using Alphas = std::vector<std::vector<int>>;

    // Where the image's last row ends the memory ends, as in libraries that do not pad it.
    std::vector<std::uint8_t> bitmap = {11, 12, 13, 14, 99, 99, 21, 22, 23, 24, 99, 99, 31, 32, 33, 34};
    AlphaImage image{4, 3, 6, bitmap.data(), kWhite, 0, 0};
    std::vector<std::uint8_t> bits = std::vector<std::uint8_t>(std::size_t{3 * 24 + 20});
    SubPicDesc target{0, 5, 4, 32, 24, bits.data(), {}};
    Rect bounds = kInvertedRect;

    Alphas At(int x, int y) {
        std::fill(bits.begin(), bits.end(), std::uint8_t{0});
        bounds = kInvertedRect;
        image.dstX = x;
        image.dstY = y;
        BlendImage(image, target, bounds);
        return ReadAlphas();
    }
    Alphas ReadAlphas() {
        Alphas alphas;
        for (std::size_t row = 0; row < 4; ++row) {
            alphas.emplace_back();
            for (std::size_t column = 0; column < 5; ++column) {
                alphas.back().push_back(bits[row * 24 + column * 4 + 3]);
            }
        }
        return alphas;
    }
    // That nothing is drawn and the bounds stay as they were.
    void ExpectNothing(int x, int y) {
        EXPECT_EQ(At(x, y), kNothing) << x << "," << y;
        EXPECT_EQ(bounds, kInvertedRect) << x << "," << y;
    }

    const Alphas kNothing = Alphas(4, std::vector<int>(5, 0));
};

TEST_F(ImageBlendClip, AnImageInsideIsDrawnWhole) {
    const Alphas expected = {{0, 0, 0, 0, 0}, {0, 11, 12, 13, 14}, {0, 21, 22, 23, 24}, {0, 31, 32, 33, 34}};
    EXPECT_EQ(At(1, 1), expected);
    EXPECT_EQ(bounds, (Rect{1, 1, 5, 4}));
    EXPECT_EQ(bits[20] | bits[23], 0) << "between two rows";
}

TEST_F(ImageBlendClip, LeftAndTopCutTheImagesBeginning) {
    const Alphas left = {{13, 14, 0, 0, 0}, {23, 24, 0, 0, 0}, {33, 34, 0, 0, 0}, {0, 0, 0, 0, 0}};
    EXPECT_EQ(At(-2, 0), left);
    EXPECT_EQ(bounds, (Rect{0, 0, 2, 3}));
    const Alphas top = {{31, 32, 33, 34, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}};
    EXPECT_EQ(At(0, -2), top);
    EXPECT_EQ(bounds, (Rect{0, 0, 4, 1}));
    const Alphas both = {{24, 0, 0, 0, 0}, {34, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}};
    EXPECT_EQ(At(-3, -1), both);
    EXPECT_EQ(bounds, (Rect{0, 0, 1, 2}));
}

TEST_F(ImageBlendClip, RightAndBottomCutTheImagesEnd) {
    const Alphas right = {{0, 0, 0, 11, 12}, {0, 0, 0, 21, 22}, {0, 0, 0, 31, 32}, {0, 0, 0, 0, 0}};
    EXPECT_EQ(At(3, 0), right);
    EXPECT_EQ(bounds, (Rect{3, 0, 5, 3}));
    const Alphas corner = {{0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 11}};
    EXPECT_EQ(At(4, 3), corner);
    EXPECT_EQ(bounds, (Rect{4, 3, 5, 4}));
}

TEST_F(ImageBlendClip, AnImageLargerThanThePictureIsCutOnEverySide) {
    target.width = 2;
    target.height = 1;
    const Alphas expected = {{22, 23, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}};
    EXPECT_EQ(At(-1, -1), expected);
    EXPECT_EQ(bounds, (Rect{0, 0, 2, 1}));
}

TEST_F(ImageBlendClip, AnImageBesideThePictureLeavesTheBoundsInverted) {
    for (const int x : {-4, 5, -1000, 1000, kLeast, kMost}) {
        ExpectNothing(x, 0);
    }
    for (const int y : {-3, 4, -1000, 1000, kLeast, kMost}) {
        ExpectNothing(0, y);
    }
    ExpectNothing(kLeast, kMost);
}

TEST_F(ImageBlendClip, AnImageWithoutSizeOrBitmapIsPassedOver) {
    for (const int size : {0, -1, kLeast}) {
        image.width = size;
        image.height = 3;
        ExpectNothing(0, 0);
        image.width = 4;
        image.height = size;
        ExpectNothing(0, 0);
    }
    image.height = 3;
    image.bitmap = nullptr;
    ExpectNothing(0, 0);
}

TEST_F(ImageBlendClip, ThereIsNothingToDrawOnInAPictureWithoutSize) {
    target.width = 0;
    ExpectNothing(0, 0);
    target.width = 5;
    target.height = 0;
    ExpectNothing(0, 0);
}

TEST_F(ImageBlendClip, BoundsHoldTheClippedRectangleWhetherOrNotAPixelChanged) {
    std::fill(bitmap.begin(), bitmap.end(), std::uint8_t{0});
    EXPECT_EQ(At(-1, 2), kNothing);
    EXPECT_EQ(bounds, (Rect{0, 2, 3, 4}));
    std::fill(bitmap.begin(), bitmap.end(), std::uint8_t{255});
    image.color = 0xFFFFFFFF;
    EXPECT_EQ(At(1, 1), kNothing);
    EXPECT_EQ(bounds, (Rect{1, 1, 5, 4}));
}

TEST_F(ImageBlendClip, BoundsGrowAndNeverShrink) {
    image.width = 1;
    image.height = 1;
    At(2, 1);
    EXPECT_EQ(bounds, (Rect{2, 1, 3, 2}));
    image.dstX = 4;
    image.dstY = 3;
    BlendImage(image, target, bounds);
    EXPECT_EQ(bounds, (Rect{2, 1, 5, 4}));
    image.dstX = 3;
    image.dstY = 2;
    BlendImage(image, target, bounds);
    EXPECT_EQ(bounds, (Rect{2, 1, 5, 4}));
    image.dstX = 0;
    image.dstY = 0;
    BlendImage(image, target, bounds);
    EXPECT_EQ(bounds, (Rect{0, 0, 5, 4}));
}

TEST_F(ImageBlendClip, LaterImagesLieOverEarlierOnes) {
    At(0, 0);
    image.color = 0xFF000000;
    image.dstX = 1;
    image.dstY = 0;
    BlendImage(image, target, bounds);
    // 12 of white under 11 of red: the rest is 244, 244 * 12 + 127 = 3055, 11.98 of 255
    EXPECT_EQ((std::vector<std::uint8_t>{bits.begin() + 4, bits.begin() + 8}),
              (std::vector<std::uint8_t>{11, 11, 22, 22}));
}

} // namespace
} // namespace brindlecast
