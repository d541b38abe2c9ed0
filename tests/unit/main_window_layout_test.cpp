#include "app/main_window_layout.h"

#include "base/display_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

constexpr Size kScreen{1920, 1080};
constexpr Rect kWork{0, 0, 1920, 1040};

TEST(MainWindowLayout, ChildrenFillTheWindowInsideTheFrame) {
    const MainWindowLayout layout = LayOutMainWindow({1200, 816}, {3, 32, 60});
    EXPECT_EQ(layout.titleBar, (Rect{3, 3, 1197, 35}));
    EXPECT_EQ(layout.video, (Rect{3, 35, 1197, 753}));
    EXPECT_EQ(layout.toolbar, (Rect{3, 753, 1197, 813}));
}

TEST(MainWindowLayout, MetricsAreScaledOneByOne) {
    SetSystemDpi(144);
    const MainWindowMetrics metrics = ScaledMetrics();
    SetSystemDpi(96);
    EXPECT_EQ(metrics.frame, 4);
    EXPECT_EQ(metrics.titleBar, 48);
    EXPECT_EQ(metrics.toolbar, 90);
}

TEST(MainWindowPlacement, AFirstWindowIsCentred) {
    EXPECT_EQ(CenterOnScreen(kStartSize, kScreen), (Rect{360, 132, 1560, 948}));
}

TEST(MainWindowPlacement, AVisibleWindowComesBackWhereItWas) {
    EXPECT_EQ(RestoreCorner({100, 120}, {800, 580}, kWork, kScreen), (Point{100, 120}));
}

TEST(MainWindowPlacement, AWindowOnNoMonitorIsCentred) {
    EXPECT_EQ(RestoreCorner({-10000, 0}, {800, 600}, std::nullopt, kScreen), (Point{560, 240}));
}

struct Clamp {
    const char* name;
    Point stored;
    Point expected;
};

TEST(MainWindowPlacement, FiftyPixelsReachIntoTheWorkArea) {
    const Clamp cases[] = {
        {"49 pixels left over at the left: back to the edge", {-751, 100}, {0, 100}},
        {"50 pixels left over at the left: stays", {-750, 100}, {-750, 100}},
        {"49 pixels left over at the top", {100, -551}, {100, 0}},
        {"50 pixels left over at the top", {100, -550}, {100, -550}},
        {"49 pixels left over at the right", {1871, 100}, {1120, 100}},
        {"50 pixels left over at the right", {1870, 100}, {1870, 100}},
        {"49 pixels left over at the bottom", {100, 991}, {100, 440}},
        {"50 pixels left over at the bottom", {100, 990}, {100, 990}},
    };
    for (const Clamp& test : cases) {
        EXPECT_EQ(RestoreCorner(test.stored, {800, 600}, kWork, kScreen), test.expected) << test.name;
    }
}

// The store may hold any number.
constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

TEST(MainWindowPlacement, EdgesBeyondTheRangeOfNumbersEndThere) {
    EXPECT_EQ(StoredRectangle({100, 120}, {800, 580}), (Rect{100, 120, 900, 700}));
    EXPECT_EQ(StoredRectangle({kMost - 10, kMost}, {800, 1}), (Rect{kMost - 10, kMost, kMost, kMost}));
    EXPECT_EQ(StoredRectangle({kMost, 0}, {kMost, kMost}), (Rect{kMost, 0, kMost, kMost}));
    EXPECT_EQ(StoredRectangle({kLeast, kLeast}, {kMost, 1}), (Rect{kLeast, kLeast, -1, kLeast + 1}));
}

TEST(MainWindowPlacement, ExtremeValuesArePutBackLikeOthers) {
    EXPECT_EQ(RestoreCorner({kMost, kMost}, {800, 600}, kWork, kScreen), (Point{1120, 440}));
    EXPECT_EQ(RestoreCorner({kLeast, kLeast}, {800, 600}, kWork, kScreen), (Point{0, 0}));
    EXPECT_EQ(RestoreCorner({kMost, kMost}, {kMost, kMost}, kWork, kScreen),
              (Point{1920 - kMost, 1040 - kMost}));
    // A work area left of and above the first screen.
    EXPECT_EQ(RestoreCorner({0, 0}, {kMost, kMost}, Rect{-1920, -1080, 0, -40}, kScreen),
              (Point{kLeast + 1, kLeast}));
    EXPECT_EQ(RestoreCorner({0, 0}, {kMost, kMost}, std::nullopt, kScreen),
              (Point{(1920 - kMost) / 2, (1080 - kMost) / 2}));
}

} // namespace
} // namespace brindlecast
