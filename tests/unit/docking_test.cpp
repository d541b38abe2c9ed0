#include "playlist_ui/docking.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

constexpr Rect kWorkArea{0, 0, 1920, 1040};
constexpr int kWidth = 420;
constexpr int kLimit = 5;

TEST(Docking, ThePlayListStandsRightOfTheMainWindowWhereItFits) {
    EXPECT_EQ((DockPlace{{1100, 50, 1520, 866}, DockSide::Right}),
              PlaceBeside({100, 50, 1100, 866}, kWorkArea, kWidth));
    EXPECT_EQ((DockPlace{{1500, 50, 1920, 866}, DockSide::Right}),
              PlaceBeside({300, 50, 1500, 866}, kWorkArea, kWidth))
        << "it fits to the pixel";
}

TEST(Docking, ItStandsLeftWhereItWouldCrossTheRightEdge) {
    EXPECT_EQ((DockPlace{{81, 50, 501, 866}, DockSide::Left}),
              PlaceBeside({501, 50, 1501, 866}, kWorkArea, kWidth));
    EXPECT_EQ((DockPlace{{0, 50, 420, 866}, DockSide::Left}),
              PlaceBeside({420, 50, 1920, 866}, kWorkArea, kWidth))
        << "it fits to the pixel";
}

TEST(Docking, WhereNeitherFitsItStandsAtTheLeftEdgeUndocked) {
    EXPECT_EQ((DockPlace{{0, 50, 420, 866}, DockSide::None}),
              PlaceBeside({419, 50, 1919, 866}, kWorkArea, kWidth));
    EXPECT_EQ((DockPlace{{0, 0, 420, 1040}, DockSide::None}),
              PlaceBeside({0, 0, 1920, 1040}, kWorkArea, kWidth));
}

TEST(Docking, TheWorkAreaMayLieAnywhere) {
    constexpr Rect kSecond{-1600, 200, -40, 1100};
    EXPECT_EQ((DockPlace{{-460, 300, -40, 900}, DockSide::Right}),
              PlaceBeside({-1260, 300, -460, 900}, kSecond, kWidth));
    EXPECT_EQ((DockPlace{{-1600, 300, -1180, 900}, DockSide::Left}),
              PlaceBeside({-1180, 300, -100, 900}, kSecond, kWidth));
    EXPECT_EQ((DockPlace{{-1600, 300, -1180, 900}, DockSide::None}),
              PlaceBeside({-1181, 300, -100, 900}, kSecond, kWidth));
}

TEST(Docking, ItKeepsTheMainWindowsTopAndHeightBeyondTheWorkArea) {
    EXPECT_EQ((DockPlace{{500, -30, 920, 1200}, DockSide::Right}),
              PlaceBeside({100, -30, 500, 1200}, kWorkArea, kWidth));
}

TEST(Docking, EdgesAtTheEndsOfTheRangeAreFarFromTheWorkArea) {
    constexpr int kLast = std::numeric_limits<int>::max();
    constexpr int kFirst = std::numeric_limits<int>::min();
    EXPECT_EQ((DockPlace{{0, 0, 420, 600}, DockSide::None}),
              PlaceBeside({kFirst, 0, kLast, 600}, kWorkArea, kWidth));
    EXPECT_EQ(DockSide::None, TouchedSide({kFirst, 0, kFirst, 600}, {kLast, 0, kLast, 600}, kLimit));
}

TEST(Docking, ThePlayListTouchesTheSideWhoseEdgesAreLessThanTheLimitApart) {
    constexpr Rect kMain{500, 100, 1200, 700};
    for (const int offset : {-4, 0, 4}) {
        EXPECT_EQ(DockSide::Right, TouchedSide(kMain, {1200 + offset, 100, 1620, 700}, kLimit)) << offset;
        EXPECT_EQ(DockSide::Left, TouchedSide(kMain, {80, 100, 500 + offset, 700}, kLimit)) << offset;
    }
    for (const int offset : {-5, 5}) {
        EXPECT_EQ(DockSide::None, TouchedSide(kMain, {1200 + offset, 100, 1620, 700}, kLimit)) << offset;
        EXPECT_EQ(DockSide::None, TouchedSide(kMain, {80, 100, 500 + offset, 700}, kLimit)) << offset;
    }
}

TEST(Docking, TheTopsMustBeNearToo) {
    constexpr Rect kMain{500, 100, 1200, 700};
    for (const int offset : {-4, 4}) {
        EXPECT_EQ(DockSide::Right, TouchedSide(kMain, {1200, 100 + offset, 1620, 700}, kLimit)) << offset;
        EXPECT_EQ(DockSide::Left, TouchedSide(kMain, {80, 100 + offset, 500, 700}, kLimit)) << offset;
    }
    for (const int offset : {-5, 5}) {
        EXPECT_EQ(DockSide::None, TouchedSide(kMain, {1200, 100 + offset, 1620, 700}, kLimit)) << offset;
        EXPECT_EQ(DockSide::None, TouchedSide(kMain, {80, 100 + offset, 500, 700}, kLimit)) << offset;
    }
}

TEST(Docking, HeightAndTheOuterEdgesDoNotMatter) {
    EXPECT_EQ(DockSide::Right, TouchedSide({500, 100, 1200, 700}, {1200, 100, 1230, 110}, kLimit));
    EXPECT_EQ(DockSide::Left, TouchedSide({500, 100, 1200, 700}, {-900, 100, 500, 4000}, kLimit));
    EXPECT_EQ(DockSide::None, TouchedSide({500, 100, 1200, 700}, {500, 100, 1200, 700}, kLimit))
        << "one over the other";
}

TEST(Docking, TheRightSideCountsWhereBothTouch) {
    EXPECT_EQ(DockSide::Right, TouchedSide({500, 100, 502, 700}, {501, 100, 503, 700}, kLimit));
}

} // namespace
} // namespace brindlecast
