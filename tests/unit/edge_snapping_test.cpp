#include "app/edge_snapping.h"

#include "base/display_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

constexpr Rect kWork{100, 50, 1900, 1000};
constexpr int kLimit = 10;
constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

TEST(DraggedWindow, FollowsTheCursorAndKeepsItsSize) {
    EXPECT_EQ(DraggedRect({300, 200, 1100, 800}, {500, 220}, {530, 180}), (Rect{330, 160, 1130, 760}));
    EXPECT_EQ(DraggedRect({300, 200, 1100, 800}, {500, 220}, {500, 220}), (Rect{300, 200, 1100, 800}));
    EXPECT_EQ(DraggedRect({-1600, 10, -800, 610}, {-1000, 20}, {-1100, 25}), (Rect{-1700, 15, -900, 615}));
}

TEST(DraggedWindow, StopsAtTheRangeOfNumbers) {
    EXPECT_EQ(DraggedRect({0, 0, kMost, 100}, {0, 0}, {5, 7}), (Rect{0, 7, kMost, 107}));
    EXPECT_EQ(DraggedRect({kLeast, kLeast, 0, 0}, {0, 0}, {-5, -7}), (Rect{kLeast, kLeast, 0, 0}));
    EXPECT_EQ(DraggedRect({0, 0, 100, 100}, {kLeast, kLeast}, {kMost, kMost}),
              (Rect{kMost - 100, kMost - 100, kMost, kMost}));
}

class SnapLimitTest : public ::testing::Test {
protected:
    ~SnapLimitTest() override { SetSystemDpi(96); }
};

TEST_F(SnapLimitTest, IsTheDistanceTimesTheScale) {
    EXPECT_EQ(SnapLimit(10), 10);
    SetSystemDpi(144);
    EXPECT_EQ(SnapLimit(10), 15);
    EXPECT_EQ(SnapLimit(7), 10) << "10.5";
    EXPECT_EQ(SnapLimit(1), 1) << "1.5";
}

TEST_F(SnapLimitTest, EveryStoredDistanceIsHarmless) {
    EXPECT_EQ(SnapLimit(0), 0);
    EXPECT_EQ(SnapLimit(-1), -1);
    EXPECT_EQ(SnapLimit(kMost), kMost);
    SetSystemDpi(144);
    EXPECT_EQ(SnapLimit(kMost), kMost);
    EXPECT_EQ(SnapLimit(kLeast), kLeast);
}

// A window of 800 by 600 at a corner.
Rect WindowAt(int left, int top) {
    return {left, top, left + 800, top + 600};
}

struct Snap {
    const char* name;
    Rect candidate;
    Rect expected;
};

TEST(SnapToEdges, EachSideIsDrawnToItsEdgeFromLessThanTheLimit) {
    const Snap cases[] = {
        {"left, inside", WindowAt(109, 300), WindowAt(100, 300)},
        {"left, outside", WindowAt(91, 300), WindowAt(100, 300)},
        {"left, inside by the limit", WindowAt(110, 300), WindowAt(110, 300)},
        {"left, outside by the limit", WindowAt(90, 300), WindowAt(90, 300)},
        {"right, inside", WindowAt(1091, 300), WindowAt(1100, 300)},
        {"right, outside", WindowAt(1109, 300), WindowAt(1100, 300)},
        {"right, inside by the limit", WindowAt(1090, 300), WindowAt(1090, 300)},
        {"right, outside by the limit", WindowAt(1110, 300), WindowAt(1110, 300)},
        {"top, inside", WindowAt(500, 59), WindowAt(500, 50)},
        {"top, outside", WindowAt(500, 41), WindowAt(500, 50)},
        {"top, inside by the limit", WindowAt(500, 60), WindowAt(500, 60)},
        {"top, outside by the limit", WindowAt(500, 40), WindowAt(500, 40)},
        {"bottom, inside", WindowAt(500, 391), WindowAt(500, 400)},
        {"bottom, outside", WindowAt(500, 409), WindowAt(500, 400)},
        {"bottom, inside by the limit", WindowAt(500, 390), WindowAt(500, 390)},
        {"bottom, outside by the limit", WindowAt(500, 410), WindowAt(500, 410)},
        {"already there", WindowAt(100, 50), WindowAt(100, 50)},
        {"nowhere near", WindowAt(500, 200), WindowAt(500, 200)},
    };
    for (const Snap& test : cases) {
        EXPECT_EQ(SnapToEdges(test.candidate, kWork, kLimit), test.expected) << test.name;
    }
}

TEST(SnapToEdges, BothAxesSnapAtOnceInEveryCorner) {
    EXPECT_EQ(SnapToEdges(WindowAt(105, 45), kWork, kLimit), WindowAt(100, 50));
    EXPECT_EQ(SnapToEdges(WindowAt(1105, 45), kWork, kLimit), WindowAt(1100, 50));
    EXPECT_EQ(SnapToEdges(WindowAt(95, 405), kWork, kLimit), WindowAt(100, 400));
    EXPECT_EQ(SnapToEdges(WindowAt(1095, 395), kWork, kLimit), WindowAt(1100, 400));
}

TEST(SnapToEdges, AtOneAndAHalfTimesTheScaleFifteenPixelsAreTooFar) {
    EXPECT_EQ(SnapToEdges(WindowAt(114, 300), kWork, 15), WindowAt(100, 300));
    EXPECT_EQ(SnapToEdges(WindowAt(115, 300), kWork, 15), WindowAt(115, 300));
    EXPECT_EQ(SnapToEdges(WindowAt(1086, 386), kWork, 15), WindowAt(1100, 400));
    EXPECT_EQ(SnapToEdges(WindowAt(1085, 385), kWork, 15), WindowAt(1085, 385));
}

TEST(SnapToEdges, WhereBothSidesHitTheLaterOneWins) {
    // Five pixels less wide and high than the area: the right and the lower edge win.
    EXPECT_EQ(SnapToEdges({102, 53, 1897, 998}, kWork, kLimit), (Rect{105, 55, 1900, 1000}));
    // Narrower than both limits together, in an area that is hardly wider.
    EXPECT_EQ(SnapToEdges({3, 300, 18, 900}, {0, 0, 20, 1000}, kLimit), (Rect{5, 300, 20, 900}));
    EXPECT_EQ(SnapToEdges({300, 3, 900, 18}, {0, 0, 1000, 20}, kLimit), (Rect{300, 5, 900, 20}));
    // Larger than the area by less than the limit.
    EXPECT_EQ(SnapToEdges({99, 49, 1904, 1004}, kWork, kLimit), (Rect{95, 45, 1900, 1000}));
}

TEST(SnapToEdges, TheLaterSideIsTestedWhereTheEarlierHitPutIt) {
    // Fifteen pixels less wide than the area: put against the left edge, the right side is too far away.
    EXPECT_EQ(SnapToEdges({108, 300, 1893, 900}, kWork, kLimit), (Rect{100, 300, 1885, 900}));
}

TEST(SnapToEdges, EdgesAtTheEndsOfTheRangeOfNumbersAreHarmless) {
    EXPECT_EQ(SnapToEdges({kLeast, kLeast, kMost, kMost}, kWork, kLimit),
              (Rect{kLeast, kLeast, kMost, kMost}));
    EXPECT_EQ(SnapToEdges({kLeast + 2000, 300, kLeast + 2800, 900}, kWork, kMost),
              (Rect{1100, 400, 1900, 1000}));
    EXPECT_EQ(SnapToEdges({95, 300, kMost, 900}, kWork, kLimit), (Rect{95, 300, kMost, 900}))
        << "there is no place for its right side five pixels further";
}

} // namespace
} // namespace brindlecast
