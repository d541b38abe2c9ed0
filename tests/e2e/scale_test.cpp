#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

// The program on a system at 144 dots per inch, which is a scale of 1.5.
class ScaleTest : public ProgramTest {
protected:
    // The frame of 3 is cut to 4, the title bar is 48, the toolbar 90 pixels high.
    static Rect VideoInside(const Rect& window) {
        return {window.left + 4, window.top + 52, window.right - 4, window.bottom - 94};
    }

private:
    TemporaryRegistryValue dpi{L"Control Panel\\Desktop", L"LogPixels", 144};
};

TEST_F(ScaleTest, LengthsAreScaledButTheFirstSizeIsNot) {
    Player player;
    const Rect window = ScreenRectOf(player.MainWindow());
    EXPECT_EQ(window.Width(), 1200);
    EXPECT_EQ(window.Height(), 816);
    EXPECT_EQ(ScreenRectOf(player.VideoWindow()), VideoInside(window));
    SetWindowPos(player.MainWindow(), nullptr, 100, 100, 50, 40, SWP_NOZORDER);
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{100, 100, 400, 250}))
        << "the least size is scaled too";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ScaleTest, AMoveToAMonitorOfAnotherScaleChangesNothing) {
    Player player;
    const Rect window = ScreenRectOf(player.MainWindow());
    ASSERT_TRUE(player.Send(WM_DPICHANGED, MAKEWPARAM(96, 96)).has_value());
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), window);
    EXPECT_EQ(ScreenRectOf(player.VideoWindow()), VideoInside(window));
    // Nor for what is laid out afterwards.
    SetWindowPos(player.MainWindow(), nullptr, 100, 100, 900, 640, SWP_NOZORDER);
    EXPECT_EQ(ScreenRectOf(player.VideoWindow()), VideoInside({100, 100, 1000, 740}));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
