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

} // namespace
} // namespace brindlecast
