#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"
#include "ui/messages.h"

namespace brindlecast::testing {
namespace {

class ProcessTest : public ProgramTest {};

TEST_F(ProcessTest, StartsIdleAndEndsWithZero) {
    Player player;
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ProcessTest, IgnoresAPathOnTheCommandLine) {
    ProcessStart start = PlayerStart();
    start.arguments = L"\"" + Media(kFilm.name) + L"\"";
    Player player(start);
    // Whatever the start itself had posted has acted once this has.
    PostMessageW(player.MainWindow(), kMessageSetVolume, 37, 0);
    EXPECT_TRUE(WaitUntil(limits::kReaction, "volume",
                          [&] { return store.ReadDword(L"Volume", TypeCheck::Strict) == 37U; }));
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ProcessTest, TwoStartsAreTwoIndependentWindows) {
    Player first;
    Player second;
    EXPECT_NE(first.MainWindow(), second.MainWindow());
    EXPECT_EQ(CountPlayers(), 2);
    // Where it hides nothing of the other.
    SetWindowPos(second.MainWindow(), nullptr, 0, 0, 300, 110, SWP_NOZORDER);
    ASSERT_TRUE(first.Play(kFilm));
    EXPECT_FALSE(second.IsOpen());
    EXPECT_EQ(second.Title(), L"Brindlecast");
    EXPECT_EQ(second.Close(), 0U);
    const auto readings = first.Watch(kFilm, std::chrono::milliseconds(1500));
    EXPECT_TRUE(JudgePlayback(readings, kFilm.framesPerSecond, kScreenTolerance).moving)
        << "the end of one must not disturb the other";
    EXPECT_EQ(first.Close(), 0U);
}

TEST_F(ProcessTest, TheShowCommandOverridesAStoredMaximisedState) {
    const Rect stored{200, 150, 1100, 790};
    for (const WORD command : {WORD{SW_SHOWNORMAL}, WORD{SW_SHOWMAXIMIZED}}) {
        SCOPED_TRACE(command);
        store.WriteDword(L"WindowX", 200);
        store.WriteDword(L"WindowY", 150);
        store.WriteDword(L"WindowW", 900);
        store.WriteDword(L"WindowH", 640);
        store.WriteDword(L"WindowMaximized", 1);
        ProcessStart start = PlayerStart();
        start.showCommand = command;
        Player player(start);
        EXPECT_TRUE(player.Answers()) << "the show command has been carried out by then";
        const bool maximised = command == SW_SHOWMAXIMIZED;
        EXPECT_EQ(IsZoomed(player.MainWindow()) != FALSE, maximised);
        EXPECT_EQ(ScreenRectOf(player.MainWindow()),
                  maximised ? (Rect{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)})
                            : stored);
        EXPECT_EQ(player.Close(), 0U);
        EXPECT_EQ(store.ReadDword(L"WindowMaximized", TypeCheck::Strict), maximised ? 1U : 0U);
        EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), 200U);
        EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 900U);
    }
}

TEST_F(ProcessTest, ClosingWhilePlayingEndsTheProcessInTime) {
    Player player;
    player.Drop({Media(kFilm.name)});
    ASSERT_TRUE(player.WaitForFrame(kFilm).has_value());
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
