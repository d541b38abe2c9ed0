#include "ui/frame_zones.h"

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr Size kWindow{400, 300};
constexpr int kBand = 6;

FrameZone At(int x, int y) {
    return FrameZoneAt({x, y}, kWindow, kBand);
}

TEST(FrameZones, CornersSidesAndInside) {
    EXPECT_EQ(At(0, 0), FrameZone::TopLeft);
    EXPECT_EQ(At(200, 0), FrameZone::Top);
    EXPECT_EQ(At(399, 0), FrameZone::TopRight);
    EXPECT_EQ(At(0, 150), FrameZone::Left);
    EXPECT_EQ(At(200, 150), FrameZone::Inside);
    EXPECT_EQ(At(399, 150), FrameZone::Right);
    EXPECT_EQ(At(0, 299), FrameZone::BottomLeft);
    EXPECT_EQ(At(200, 299), FrameZone::Bottom);
    EXPECT_EQ(At(399, 299), FrameZone::BottomRight);
}

TEST(FrameZones, TheBandIsSixPixelsAtTheLeftAndTopAndFiveAtTheRightAndBottom) {
    EXPECT_EQ(At(5, 150), FrameZone::Left);
    EXPECT_EQ(At(6, 150), FrameZone::Inside);
    EXPECT_EQ(At(394, 150), FrameZone::Inside);
    EXPECT_EQ(At(395, 150), FrameZone::Right);
    EXPECT_EQ(At(200, 5), FrameZone::Top);
    EXPECT_EQ(At(200, 6), FrameZone::Inside);
    EXPECT_EQ(At(200, 294), FrameZone::Inside);
    EXPECT_EQ(At(200, 295), FrameZone::Bottom);
}

TEST(FrameZones, CornersReachAsFarAsTheBandAlongBothSides) {
    EXPECT_EQ(At(5, 0), FrameZone::TopLeft);
    EXPECT_EQ(At(6, 0), FrameZone::Top);
    EXPECT_EQ(At(5, 5), FrameZone::TopLeft);
    EXPECT_EQ(At(6, 5), FrameZone::Top);
    EXPECT_EQ(At(0, 6), FrameZone::Left);
    EXPECT_EQ(At(394, 0), FrameZone::Top);
    EXPECT_EQ(At(395, 0), FrameZone::TopRight);
    EXPECT_EQ(At(395, 5), FrameZone::TopRight);
    EXPECT_EQ(At(399, 6), FrameZone::Right);
    EXPECT_EQ(At(0, 294), FrameZone::Left);
    EXPECT_EQ(At(5, 295), FrameZone::BottomLeft);
    EXPECT_EQ(At(6, 295), FrameZone::Bottom);
    EXPECT_EQ(At(394, 299), FrameZone::Bottom);
    EXPECT_EQ(At(395, 295), FrameZone::BottomRight);
    EXPECT_EQ(At(399, 294), FrameZone::Right);
}

TEST(FrameZones, WhereBandsOverlapTheUpperAndTheLeftOneWin) {
    // Eight pixels either way: from the fourth to the sixth both bands of six hold.
    const auto at = [](int x, int y) {
        return FrameZoneAt({x, y}, {8, 8}, kBand);
    };
    for (int place = 0; place <= 5; ++place) {
        EXPECT_EQ(at(place, 0), FrameZone::TopLeft) << place;
        EXPECT_EQ(at(0, place), FrameZone::TopLeft) << place;
    }
    for (int place = 6; place <= 7; ++place) {
        EXPECT_EQ(at(place, 0), FrameZone::TopRight) << place;
        EXPECT_EQ(at(0, place), FrameZone::BottomLeft) << place;
        EXPECT_EQ(at(place, place), FrameZone::BottomRight) << place;
    }
    // Narrow alone: there are no upper and lower sides, and nothing inside.
    const auto narrow = [](int x, int y) {
        return FrameZoneAt({x, y}, {8, 300}, kBand);
    };
    EXPECT_EQ(narrow(3, 150), FrameZone::Left);
    EXPECT_EQ(narrow(5, 150), FrameZone::Left);
    EXPECT_EQ(narrow(6, 150), FrameZone::Right);
    EXPECT_EQ(narrow(6, 299), FrameZone::BottomRight);
}

} // namespace
} // namespace brindlecast
