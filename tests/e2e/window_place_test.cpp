#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/window_state.h"

namespace brindlecast::testing {
namespace {

// Where the window is put back at the next start.
class WindowPlaceTest : public ProgramTest {
protected:
    void StorePlace(Point corner, Size size) {
        store.WriteDword(L"WindowX", static_cast<std::uint32_t>(corner.x));
        store.WriteDword(L"WindowY", static_cast<std::uint32_t>(corner.y));
        store.WriteDword(L"WindowW", static_cast<std::uint32_t>(size.width));
        store.WriteDword(L"WindowH", static_cast<std::uint32_t>(size.height));
    }
    void ExpectStored(Point corner, Size size, bool maximised) {
        EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), static_cast<std::uint32_t>(corner.x));
        EXPECT_EQ(store.ReadDword(L"WindowY", TypeCheck::Strict), static_cast<std::uint32_t>(corner.y));
        EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), static_cast<std::uint32_t>(size.width));
        EXPECT_EQ(store.ReadDword(L"WindowH", TypeCheck::Strict), static_cast<std::uint32_t>(size.height));
        EXPECT_EQ(store.ReadDword(L"WindowMaximized", TypeCheck::Strict), maximised ? 1U : 0U);
    }
};

TEST_F(WindowPlaceTest, AWindowThatHardlyReachesOntoTheScreenIsDrawnOntoIt) {
    struct {
        const char* name;
        Point stored;
        Point expected;
    } const cases[] = {
        {"49 pixels left over at the left and the top", {-751, -551}, {0, 0}},
        {"50 pixels left over at the left and the top", {-750, -550}, {-750, -550}},
        {"49 pixels left over at the right and the bottom", {1871, 1031}, {1120, 480}},
        {"50 pixels left over at the right and the bottom", {1870, 1030}, {1870, 1030}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        StorePlace(test.stored, {800, 600});
        Player player;
        ASSERT_EQ(WorkAreaOf(player.MainWindow()), (Rect{0, 0, 1920, 1080}));
        EXPECT_EQ(ScreenRectOf(player.MainWindow()),
                  (Rect{test.expected.x, test.expected.y, test.expected.x + 800, test.expected.y + 600}));
        EXPECT_EQ(player.Close(), 0U);
    }
}

TEST_F(WindowPlaceTest, APlaceOnAMonitorThatIsGoneIsCentred) {
    for (const Point corner : {Point{2500, 100}, Point{100, 1200}, Point{1920, 0}, Point{-800, 0}}) {
        SCOPED_TRACE(corner.x);
        StorePlace(corner, {800, 600});
        Player player;
        ASSERT_EQ(MonitorOf(player.MainWindow()), (Rect{0, 0, 1920, 1080}));
        EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{560, 240, 1360, 840}));
        EXPECT_EQ(player.Close(), 0U);
    }
}

TEST_F(WindowPlaceTest, AMaximisedWindowCoversTheWorkAreaAndGoesBack) {
    StorePlace({210, 160}, {910, 650});
    Player player;
    player.Send(WM_SYSCOMMAND, SC_MAXIMIZE);
    EXPECT_TRUE(WaitForPlace(player.MainWindow(), WorkAreaOf(player.MainWindow())));
    const Rect work = WorkAreaOf(player.MainWindow());
    EXPECT_EQ(ScreenRectOf(player.VideoWindow()),
              (Rect{work.left + 3, work.top + 35, work.right - 3, work.bottom - 63}));
    player.Send(WM_SYSCOMMAND, SC_RESTORE);
    EXPECT_TRUE(WaitForPlace(player.MainWindow(), {210, 160, 1120, 810}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowPlaceTest, AMaximisedWindowIsMaximisedAtTheNextStartAndKnowsItsFormerPlace) {
    StorePlace({210, 160}, {910, 650});
    {
        Player player;
        player.Send(WM_SYSCOMMAND, SC_MAXIMIZE);
        EXPECT_TRUE(WaitForPlace(player.MainWindow(), WorkAreaOf(player.MainWindow())));
        EXPECT_EQ(player.Close(), 0U);
    }
    ExpectStored({210, 160}, {910, 650}, true);
    Player again;
    EXPECT_TRUE(WaitForPlace(again.MainWindow(), WorkAreaOf(again.MainWindow())));
    EXPECT_NE(IsZoomed(again.MainWindow()), FALSE);
    again.Send(WM_SYSCOMMAND, SC_RESTORE);
    EXPECT_TRUE(WaitForPlace(again.MainWindow(), {210, 160, 1120, 810}));
    EXPECT_EQ(again.Close(), 0U);
    ExpectStored({210, 160}, {910, 650}, false);
}

TEST_F(WindowPlaceTest, WithoutAStoredSizeNothingIsMaximised) {
    StorePlace({210, 160}, {0, 650});
    store.WriteDword(L"WindowMaximized", 1);
    Player player;
    EXPECT_EQ(IsZoomed(player.MainWindow()), FALSE);
    EXPECT_EQ(ScreenRectOf(player.MainWindow()), (Rect{360, 132, 1560, 948}));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(WindowPlaceTest, AMinimisedWindowStoresItsNormalPlace) {
    {
        Player player;
        ASSERT_TRUE(PutAt(player.MainWindow(), {210, 160, 1120, 810}));
        player.Send(WM_SYSCOMMAND, SC_MINIMIZE);
        ASSERT_TRUE(WaitUntil(limits::kReaction, "minimising",
                              [&] { return IsIconic(player.MainWindow()) != FALSE; }));
        EXPECT_EQ(player.Close(), 0U);
    }
    ExpectStored({210, 160}, {910, 650}, false);
}

} // namespace
} // namespace brindlecast::testing
