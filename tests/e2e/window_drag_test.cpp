#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

#include <optional>

namespace brindlecast::testing {
namespace {

constexpr Rect kStart{500, 250, 1300, 850};
constexpr Point kGrip{900, 500}; // in the picture

// The window moved with the mouse, by the picture.
class WindowDragTest : public ProgramTest {
protected:
    // The start moved so that its left or right, upper or lower side stands that far inside the work area.
    static Rect FromLeftTop(const Rect& work, int x, int y) {
        return {work.left + x, work.top + y, work.left + x + kStart.Width(), work.top + y + kStart.Height()};
    }
    static Rect FromRightBottom(const Rect& work, int x, int y) {
        return {work.right - x - kStart.Width(), work.bottom - y - kStart.Height(), work.right - x,
                work.bottom - y};
    }

    // Drags so that the window without snapping would stand at `asked`.
    static void ExpectDragTo(const Player& player, const HeldDrag& drag, const Rect& asked,
                             const Rect& expected) {
        drag.MoveBy({asked.left - kStart.left, asked.top - kStart.top});
        EXPECT_TRUE(WaitForPlace(player.MainWindow(), expected))
            << "drawn to " << TextOf(asked) << ", stands at " << TextOf(ScreenRectOf(player.MainWindow()));
    }

    // Each side is drawn to its edge of the work area from less than that distance, from inside and outside.
    static void ExpectSnappingIn(const Player& player, const HeldDrag& drag, int limit) {
        const Rect work = WorkAreaOf(player.MainWindow());
        const Rect leftTop = FromLeftTop(work, 0, 0);
        const Rect rightBottom = FromRightBottom(work, 0, 0);
        for (const int distance : {limit - 1, limit, 1 - limit, -limit}) {
            SCOPED_TRACE(distance);
            const bool snaps = distance != limit && distance != -limit;
            const Rect askedLeftTop = FromLeftTop(work, distance, distance);
            const Rect askedRightBottom = FromRightBottom(work, distance, distance);
            ExpectDragTo(player, drag, askedLeftTop, snaps ? leftTop : askedLeftTop);
            ExpectDragTo(player, drag, askedRightBottom, snaps ? rightBottom : askedRightBottom);
        }
        // One axis alone, and away from an edge by the cursor's way alone.
        ExpectDragTo(player, drag, FromLeftTop(work, limit - 1, 300), FromLeftTop(work, 0, 300));
        ExpectDragTo(player, drag, FromLeftTop(work, limit + 3, 300), FromLeftTop(work, limit + 3, 300));
        ExpectDragTo(player, drag, FromRightBottom(work, 200, 1 - limit), FromRightBottom(work, 200, 0));
        ExpectDragTo(player, drag, kStart, kStart);
    }

    static void ExpectSnappingBelow(int limit) {
        Player player;
        player.Activate();
        ASSERT_TRUE(PutAt(player.MainWindow(), kStart));
        {
            const HeldDrag drag(player.MainWindow(), kGrip);
            ASSERT_TRUE(drag.Started());
            ExpectSnappingIn(player, drag, limit);
        }
        EXPECT_EQ(player.Close(), 0U);
    }

    static void ExpectNoSnapping() {
        Player player;
        player.Activate();
        ASSERT_TRUE(PutAt(player.MainWindow(), kStart));
        const Rect work = WorkAreaOf(player.MainWindow());
        {
            const HeldDrag drag(player.MainWindow(), kGrip);
            ASSERT_TRUE(drag.Started());
            for (const int distance : {1, -1, 9}) {
                const Rect leftTop = FromLeftTop(work, distance, distance);
                ExpectDragTo(player, drag, leftTop, leftTop);
                const Rect rightBottom = FromRightBottom(work, distance, distance);
                ExpectDragTo(player, drag, rightBottom, rightBottom);
            }
        }
        EXPECT_EQ(player.Close(), 0U);
    }
};

TEST_F(WindowDragTest, TheIdlePictureTakesTheWindowAlong) {
    Player player;
    player.Activate();
    ASSERT_TRUE(PutAt(player.MainWindow(), kStart));
    {
        const HeldDrag drag(player.MainWindow(), kGrip);
        ASSERT_TRUE(drag.Started());
        ExpectDragTo(player, drag, {620, 310, 1420, 910}, {620, 310, 1420, 910});
        ExpectDragTo(player, drag, {437, 101, 1237, 701}, {437, 101, 1237, 701});
    }
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{437, 101, 1237, 701}))
        << "it stays where it was let go";
    MoveCursor({200, 200});
    EXPECT_TRUE(player.Answers());
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{437, 101, 1237, 701}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowDragTest, AFilmTakesTheWindowAlongAndPlaysOn) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    ASSERT_TRUE(PutAt(player.MainWindow(), kStart));
    {
        const HeldDrag drag(player.MainWindow(), kGrip);
        ASSERT_TRUE(drag.Started());
        ExpectDragTo(player, drag, {620, 310, 1420, 910}, {620, 310, 1420, 910});
        const std::optional<int> before = player.WaitForFrame(kFilm);
        ASSERT_TRUE(before.has_value()) << "while the window is held";
        EXPECT_TRUE(WaitUntil(limits::kReaction, "the film going on",
                              [&] { return player.FrameOnScreen(kFilm).value_or(0) > *before; }));
    }
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{620, 310, 1420, 910}));
    EXPECT_TRUE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowDragTest, AWindowThatIsClosedWhileItIsHeldEnds) {
    Player player;
    player.Activate();
    ASSERT_TRUE(PutAt(player.MainWindow(), kStart));
    const HeldDrag drag(player.MainWindow(), kGrip);
    ASSERT_TRUE(drag.Started());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowDragTest, EachSideSnapsToItsEdgeFromLessThanTenPixels) {
    ExpectSnappingBelow(10);
}

TEST_F(WindowDragTest, TheStoredDistanceCounts) {
    store.WriteDword(L"MagnetDistance", 37);
    ExpectSnappingBelow(37);
}

TEST_F(WindowDragTest, TheDistanceIsScaled) {
    const TemporaryRegistryValue dpi(L"Control Panel\\Desktop", L"LogPixels", 144);
    ExpectSnappingBelow(15);
}

TEST_F(WindowDragTest, ADistanceOfNothingOrLessSwitchesSnappingOff) {
    for (const std::uint32_t distance : {0U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(distance);
        store.WriteDword(L"MagnetDistance", distance);
        ExpectNoSnapping();
    }
}

} // namespace
} // namespace brindlecast::testing
