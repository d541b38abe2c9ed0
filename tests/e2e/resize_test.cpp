#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/message_picture.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

#include <array>
#include <iterator>
#include <set>

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
            const Rect before{300, 120, 1300, 820};
            ASSERT_TRUE(PutAt(player.MainWindow(), before));
            const HeldDrag drag(player.MainWindow(), Grip(before, edge));
            ASSERT_TRUE(drag.Started());
            drag.MoveBy({40, 30});
            const Rect expected{before.left + edge.moved.left, before.top + edge.moved.top,
                                before.right + edge.moved.right, before.bottom + edge.moved.bottom};
            const Rect expectedVideo{expected.left + 3, expected.top + 35, expected.right - 3,
                                     expected.bottom - 63};
            WaitUntil(limits::kReaction, "new size", [&] {
                return ScreenRectOf(player.MainWindow()) == expected &&
                       ScreenRectOf(player.VideoWindow()) == expectedVideo;
            });
            EXPECT_EQ(ScreenRectOf(player.MainWindow()), expected);
            EXPECT_EQ(ScreenRectOf(player.VideoWindow()), expectedVideo);
        }
    }

    // The system's shapes have no names in another process: each is known by where else it shows.
    static void ExpectACursorForEachDirection(const Player& player) {
        ASSERT_TRUE(PutAt(player.MainWindow(), {300, 120, 1300, 820}));
        const Rect window = ScreenRectOf(player.MainWindow());
        const Rect video = ScreenRectOf(player.VideoWindow());
        const auto shapeAt = [&](Point point) {
            MoveCursor(point);
            // Until it stays what it is while the window goes on answering.
            HCURSOR shape = nullptr;
            int same = 0;
            WaitUntil(limits::kReaction, "a cursor", [&] {
                const HCURSOR now = player.Answers() ? CursorOnScreen() : nullptr;
                same = now != nullptr && now == shape ? same + 1 : 0;
                shape = now;
                return same == 5;
            });
            return shape;
        };
        const HCURSOR arrow = shapeAt({(video.left + video.right) / 2, (video.top + video.bottom) / 2});
        std::array<HCURSOR, std::size(kEdges)> shapes{};
        for (std::size_t edge = 0; edge < shapes.size(); ++edge) {
            shapes[edge] = shapeAt(Grip(window, kEdges[edge]));
        }
        const auto [left, right, top, bottom, topLeft, topRight, bottomLeft, bottomRight] = shapes;
        EXPECT_EQ(left, right);
        EXPECT_EQ(top, bottom);
        EXPECT_EQ(topLeft, bottomRight);
        EXPECT_EQ(topRight, bottomLeft);
        EXPECT_EQ((std::set<HCURSOR>{arrow, left, top, topLeft, topRight}).size(), 5U);
        EXPECT_EQ(shapeAt({window.left + 6, (window.top + window.bottom) / 2}), arrow) << "behind the band";
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

TEST_F(ResizeTest, TheCursorTellsTheDirectionOfEachEdgeAndCorner) {
    Player player;
    player.Activate();
    ExpectACursorForEachDirection(player);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ResizeTest, TheCursorTellsTheDirectionOverAFilmToo) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    ExpectACursorForEachDirection(player);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ResizeTest, ADraggedCornerStopsAtTheLeastSize) {
    Player player;
    player.Activate();
    ASSERT_TRUE(PutAt(player.MainWindow(), {300, 120, 1300, 820}));
    {
        const HeldDrag drag(player.MainWindow(), {1295, 815});
        ASSERT_TRUE(drag.Started());
        drag.MoveBy({-940, -640});
        EXPECT_TRUE(WaitForPlace(player.MainWindow(), {300, 120, 500, 220}))
            << TextOf(ScreenRectOf(player.MainWindow()));
        drag.MoveBy({-700, -500});
        EXPECT_TRUE(WaitForPlace(player.MainWindow(), {300, 120, 600, 320}))
            << TextOf(ScreenRectOf(player.MainWindow()));
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ResizeTest, AResizeTellsTheSizeOfThePictureButNeitherTheStartNorAMoveDoes) {
    Player player;
    const auto messageShows = [&] {
        return VisibleMessageWindow(player) != nullptr;
    };
    for (int look = 0; look < 10; ++look) {
        ASSERT_FALSE(messageShows()) << "after the start";
        LetPlay(std::chrono::milliseconds(30));
    }
    player.Activate();
    const Rect window = ScreenRectOf(player.MainWindow());
    {
        const HeldDrag drag(player.MainWindow(), {window.left + 300, window.top + 300});
        ASSERT_TRUE(drag.Started());
        drag.MoveBy({40, 30});
        ASSERT_TRUE(WaitForPlace(player.MainWindow(),
                                 {window.left + 40, window.top + 30, window.right + 40, window.bottom + 30}));
        EXPECT_FALSE(messageShows()) << "in a move";
    }
    {
        const HeldDrag drag(player.MainWindow(), {window.right + 40 - 3, window.bottom + 30 - 3});
        ASSERT_TRUE(drag.Started());
        // From 1200 by 816, less the frame and the bars.
        drag.MoveBy({-50, -60});
        EXPECT_TRUE(WaitForMessage(player, L"1144 × 658"));
        drag.MoveBy({-90, -20});
        EXPECT_TRUE(WaitForMessage(player, L"1104 × 698"));
    }
    EXPECT_TRUE(WaitUntil(limits::kReaction, "the end of a message", [&] { return !messageShows(); }));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
