#include "app/main_window_layout.h"

#include "base/display_scale.h"

#include <gtest/gtest.h>

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

TEST(MainWindowPlacement, AVisibleRectangleComesBackUnchanged) {
    const Rect stored{100, 120, 900, 700};
    EXPECT_EQ(RestoreRectangle(stored, kWork, kScreen), stored);
}

TEST(MainWindowPlacement, ARectangleOnNoMonitorIsCentredAtItsSize) {
    EXPECT_EQ(RestoreRectangle({-10000, 0, -9200, 600}, std::nullopt, kScreen), (Rect{560, 240, 1360, 840}));
}

struct Clamp {
    const char* name;
    Rect stored;
    Rect expected;
};

TEST(MainWindowPlacement, FiftyPixelsReachIntoTheWorkArea) {
    const Clamp cases[] = {
        {"49 pixels left over at the left: back to the edge", {-751, 100, 49, 700}, {0, 100, 800, 700}},
        {"50 pixels left over at the left: stays", {-750, 100, 50, 700}, {-750, 100, 50, 700}},
        {"49 pixels left over at the top", {100, -551, 900, 49}, {100, 0, 900, 600}},
        {"50 pixels left over at the top", {100, -550, 900, 50}, {100, -550, 900, 50}},
        {"49 pixels left over at the right", {1871, 100, 2671, 700}, {1120, 100, 1920, 700}},
        {"50 pixels left over at the right", {1870, 100, 2670, 700}, {1870, 100, 2670, 700}},
        {"49 pixels left over at the bottom", {100, 991, 900, 1591}, {100, 440, 900, 1040}},
        {"50 pixels left over at the bottom", {100, 990, 900, 1590}, {100, 990, 900, 1590}},
    };
    for (const Clamp& test : cases) {
        EXPECT_EQ(RestoreRectangle(test.stored, kWork, kScreen), test.expected) << test.name;
    }
}

} // namespace
} // namespace brindlecast
