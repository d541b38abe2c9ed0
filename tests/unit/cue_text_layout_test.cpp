#include "subtitles/cue_text_layout.h"

#include "tests/support/subtitle_fixture.h"

namespace brindlecast::testing {
namespace {

struct LayoutRow {
    int height; // of the picture
    int fontHeight;
    int shadowOffset;
    int outlineRadius;
};

TEST(CueTextLayout, LengthsFollowTheHeightOfThePicture) {
    for (const LayoutRow& row :
         {LayoutRow{0, 16, 2, 1}, LayoutRow{1, 16, 2, 1}, LayoutRow{240, 16, 2, 1}, LayoutRow{319, 16, 2, 1},
          LayoutRow{320, 16, 2, 1}, LayoutRow{339, 16, 2, 1}, LayoutRow{340, 17, 2, 1},
          // The shadow grows with each twelfth pixel of the font, the outline with each twentieth.
          LayoutRow{480, 24, 2, 1}, LayoutRow{719, 35, 2, 1}, LayoutRow{720, 36, 3, 1},
          LayoutRow{799, 39, 3, 1}, LayoutRow{800, 40, 3, 2}, LayoutRow{1080, 54, 4, 2},
          LayoutRow{1199, 59, 4, 2}, LayoutRow{1200, 60, 5, 3}, LayoutRow{1600, 80, 6, 3},
          LayoutRow{2160, 108, 9, 3}, LayoutRow{4320, 216, 18, 3}}) {
        for (const int width : {1, 640, 1920}) {
            const CueTextLayout layout = LayOutCueText({width, row.height});
            EXPECT_EQ(row.fontHeight, layout.fontHeight) << row.height;
            EXPECT_EQ(row.shadowOffset, layout.shadowOffset) << row.height;
            EXPECT_EQ(row.outlineRadius, layout.outlineRadius) << row.height;
        }
    }
}

TEST(CueTextLayout, TextIsMeasuredWithinAMargin) {
    EXPECT_EQ((Rect{20, 0, 1900, 1060}), LayOutCueText({1920, 1080}).measured);
    EXPECT_EQ((Rect{20, 0, 300, 160}), LayOutCueText({320, 180}).measured);
    EXPECT_EQ((Rect{20, 0, -10, -10}), LayOutCueText({10, 10}).measured);
}

TEST(CueTextLayout, TextStandsAtTheBottom) {
    EXPECT_EQ((Rect{20, 1006, 1900, 1060}), PlaceCueText({1920, 1080}, 54));
    EXPECT_EQ((Rect{20, 128, 300, 160}), PlaceCueText({320, 180}, 32));
    EXPECT_EQ((Rect{20, 160, 300, 160}), PlaceCueText({320, 180}, 0));
    EXPECT_EQ((Rect{20, -40, 300, 160}), PlaceCueText({320, 180}, 200)) << "taller than the picture";
}

class NotBlack : public ::testing::Test {
protected:
    static constexpr Size kSize{5, 4};

    void Set(int x, int y, const Pixel& pixel) {
        std::uint8_t* const bytes = drawing.data() + (std::ptrdiff_t{y} * kSize.width + x) * 4;
        bytes[0] = static_cast<std::uint8_t>(pixel.blue);
        bytes[1] = static_cast<std::uint8_t>(pixel.green);
        bytes[2] = static_cast<std::uint8_t>(pixel.red);
        bytes[3] = static_cast<std::uint8_t>(pixel.alpha);
    }
    Rect Copy() {
        Rect bbox = kInvertedRect;
        CopyWhatIsNotBlack(drawing.data(), canvas.desc, bbox);
        return bbox;
    }

    std::vector<std::uint8_t> drawing = std::vector<std::uint8_t>(80);
    Canvas canvas{kSize};
};

TEST_F(NotBlack, BlackIsNothing) {
    Set(2, 2, {0, 0, 0, 255}); // what the fourth byte holds does not count
    EXPECT_EQ(kInvertedRect, Copy());
    EXPECT_EQ(5 * 4, canvas.Count(kClear));
}

TEST_F(NotBlack, EveryOtherColorIsCopiedAndOpaque) {
    Set(1, 0, {1, 0, 0, 0});
    Set(2, 1, {0, 1, 0, 7});
    Set(3, 2, {0, 0, 1, 255});
    Set(2, 2, {32, 33, 34, 0});
    Set(0, 0, {0, 0, 0, 99});
    EXPECT_EQ((Rect{1, 0, 4, 3}), Copy());
    EXPECT_EQ((Pixel{1, 0, 0, 255}), canvas.At(1, 0));
    EXPECT_EQ((Pixel{0, 1, 0, 255}), canvas.At(2, 1));
    EXPECT_EQ((Pixel{0, 0, 1, 255}), canvas.At(3, 2));
    EXPECT_EQ((Pixel{32, 33, 34, 255}), canvas.At(2, 2));
    EXPECT_EQ(5 * 4 - 4, canvas.Count(kClear));
    EXPECT_TRUE(canvas.GapsAreClear());
}

TEST_F(NotBlack, TheCornersAreCopiedToo) {
    Set(0, 0, {0, 0, 9, 0});
    EXPECT_EQ((Rect{0, 0, 1, 1}), Copy());
    Set(4, 3, {0, 9, 0, 0});
    EXPECT_EQ((Rect{0, 0, 5, 4}), Copy());
    EXPECT_EQ((Pixel{0, 9, 0, 255}), canvas.At(4, 3));
}

TEST_F(NotBlack, WhatStandsUnderBlackStays) {
    canvas.desc.bits[0] = 200;
    Set(1, 1, {5, 6, 7, 0});
    static_cast<void>(Copy());
    EXPECT_EQ((Pixel{200, 0, 0, 0}), canvas.At(0, 0));
}

TEST_F(NotBlack, TheBoxIsWidened) {
    Set(2, 1, {5, 6, 7, 0});
    Rect bbox{4, 3, 5, 4};
    CopyWhatIsNotBlack(drawing.data(), canvas.desc, bbox);
    EXPECT_EQ((Rect{2, 1, 5, 4}), bbox);
}

} // namespace
} // namespace brindlecast::testing
