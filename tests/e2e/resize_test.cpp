#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"

namespace brindlecast::testing {
namespace {

// One edge or corner: where it is taken, as halves of the window's width and height, and how a drag by 40 to
// the right and 30 downwards moves the window's sides.
struct Edge {
    const char* name;
    int x;
    int y;
    Rect moved;
};

constexpr Edge kEdges[] = {
    {"left", 0, 1, {40, 0, 0, 0}},         {"right", 2, 1, {0, 0, 40, 0}},
    {"top", 1, 0, {0, 30, 0, 0}},          {"bottom", 1, 2, {0, 0, 0, 30}},
    {"top left", 0, 0, {40, 30, 0, 0}},    {"top right", 2, 0, {0, 30, 40, 0}},
    {"bottom left", 0, 2, {40, 0, 0, 30}}, {"bottom right", 2, 2, {0, 0, 40, 30}},
};

class ResizeTest : public ProgramTest {
protected:
    // Five pixels wide of the band's six, so that at the sides the point lies on the picture's windows.
    static Point Grip(const Rect& window, const Edge& edge) {
        constexpr int kInside = 4;
        const int x[] = {window.left + kInside, (window.left + window.right) / 2, window.right - 1 - kInside};
        const int y[] = {window.top + kInside, (window.top + window.bottom) / 2, window.bottom - 1 - kInside};
        return {x[edge.x], y[edge.y]};
    }

    static void ExpectEachEdgeToResize(const Player& player) {
        for (const Edge& edge : kEdges) {
            SCOPED_TRACE(edge.name);
            SetWindowPos(player.MainWindow(), nullptr, 300, 120, 1000, 700, SWP_NOZORDER);
            const Rect before = ScreenRectOf(player.MainWindow());
            ASSERT_EQ(before, (Rect{300, 120, 1300, 820}));
            const Point grip = Grip(before, edge);
            Drag(grip, {grip.x + 40, grip.y + 30});
            const Rect expected{before.left + edge.moved.left, before.top + edge.moved.top,
                                before.right + edge.moved.right, before.bottom + edge.moved.bottom};
            WaitUntil(limits::kReaction, "new size",
                      [&] { return ScreenRectOf(player.MainWindow()) == expected; });
            EXPECT_EQ(ScreenRectOf(player.MainWindow()), expected);
            EXPECT_EQ(ScreenRectOf(player.VideoWindow()),
                      (Rect{expected.left + 3, expected.top + 35, expected.right - 3, expected.bottom - 63}));
        }
    }
};

TEST_F(ResizeTest, EachEdgeAndCornerResizesTheIdleWindow) {
    Player player;
    player.Activate();
    ExpectEachEdgeToResize(player);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ResizeTest, EachEdgeAndCornerResizesTheWindowOverAPlayingFilm) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    ExpectEachEdgeToResize(player);
    EXPECT_TRUE(player.WaitForFrame(kFilm).has_value()) << "the picture follows the window";
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
