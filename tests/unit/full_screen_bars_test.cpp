#include "app/full_screen_bars.h"

#include "base/display_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindlecast {
namespace {

constexpr Rect kMonitor{0, 0, 1920, 1080};
constexpr FullScreenBands kBands{62, 110};
constexpr FullScreenBars kNone{false, false};
constexpr FullScreenBars kTitleBar{true, false};
constexpr FullScreenBars kToolbar{false, true};

FullScreenBars At(int y, const Rect& monitor = kMonitor) {
    return BarsAtCursor({monitor.left + 700, y}, monitor, kBands);
}

TEST(FullScreenBars, ABarShowsWhileTheCursorIsLessThanItsBandFromTheEdge) {
    EXPECT_EQ(At(0), kTitleBar);
    EXPECT_EQ(At(61), kTitleBar);
    EXPECT_EQ(At(62), kNone);
    EXPECT_EQ(At(540), kNone);
    EXPECT_EQ(At(970), kNone) << "110 above the lower edge";
    EXPECT_EQ(At(971), kToolbar);
    EXPECT_EQ(At(1079), kToolbar);
}

TEST(FullScreenBars, TheBandsBelongToTheMonitor) {
    constexpr Rect kAbove{-1920, -1080, 0, 0};
    EXPECT_EQ(At(-1080, kAbove), kTitleBar);
    EXPECT_EQ(At(-1019, kAbove), kTitleBar);
    EXPECT_EQ(At(-1018, kAbove), kNone);
    EXPECT_EQ(At(-110, kAbove), kNone);
    EXPECT_EQ(At(-109, kAbove), kToolbar);
}

TEST(FullScreenBars, ACursorBeyondAnEdgeIsNearIt) {
    EXPECT_EQ(At(-200), kTitleBar);
    EXPECT_EQ(At(1500), kToolbar);
    EXPECT_EQ(At(std::numeric_limits<int>::min(), {0, 100, 1920, 1180}), kTitleBar);
    EXPECT_EQ(At(std::numeric_limits<int>::max(), {0, -1180, 1920, -100}), kToolbar);
}

TEST(FullScreenBars, OnALowMonitorBothBarsMayShow) {
    EXPECT_EQ(At(50, {0, 0, 800, 150}), (FullScreenBars{true, true}));
}

TEST(FullScreenBars, TheBandsAreScaledOneByOne) {
    EXPECT_EQ(ScaledFullScreenBands(), kBands);
    SetSystemDpi(144);
    const FullScreenBands scaled = ScaledFullScreenBands();
    SetSystemDpi(120);
    const FullScreenBands cut = ScaledFullScreenBands();
    SetSystemDpi(96);
    EXPECT_EQ(scaled, (FullScreenBands{93, 165}));
    EXPECT_EQ(cut, (FullScreenBands{77, 137})) << "77.5 and 137.5";
    EXPECT_EQ(BarsAtCursor({10, 92}, kMonitor, scaled), kTitleBar);
    EXPECT_EQ(BarsAtCursor({10, 93}, kMonitor, scaled), kNone);
    EXPECT_EQ(BarsAtCursor({10, 915}, kMonitor, scaled), kNone);
    EXPECT_EQ(BarsAtCursor({10, 916}, kMonitor, scaled), kToolbar);
}

TEST(FullScreenLayout, ThePictureFillsTheWindowAndTheBarsStandOverItsEdges) {
    const FullScreenLayout layout = LayOutFullScreen(kMonitor, {3, 32, 60});
    EXPECT_EQ(layout.video, (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(layout.titleBar, (Rect{0, 0, 1920, 32}));
    EXPECT_EQ(layout.toolbar, (Rect{0, 1020, 1920, 1080}));
}

TEST(FullScreenLayout, ThePictureIsInTheWindowTheBarsAreOnTheScreen) {
    const FullScreenLayout layout = LayOutFullScreen({-2560, 200, 0, 1640}, {4, 48, 90});
    EXPECT_EQ(layout.video, (Rect{0, 0, 2560, 1440}));
    EXPECT_EQ(layout.titleBar, (Rect{-2560, 200, 0, 248}));
    EXPECT_EQ(layout.toolbar, (Rect{-2560, 1550, 0, 1640}));
}

} // namespace
} // namespace brindlecast
