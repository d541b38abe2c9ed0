#include "tests/e2e/fixture.h"
#include "tests/e2e/waits.h"

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
    Player player(L"\"" + Media(kFilm.name) + L"\"");
    EXPECT_FALSE(player.IsOpen());
    EXPECT_EQ(player.Title(), L"Brindlecast");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ProcessTest, TwoStartsAreTwoIndependentWindows) {
    Player first;
    Player second;
    EXPECT_NE(first.MainWindow(), second.MainWindow());
    EXPECT_EQ(CountPlayers(), 2);
    EXPECT_EQ(first.Close(), 0U);
    EXPECT_TRUE(second.Answers());
    EXPECT_EQ(second.Close(), 0U);
}

TEST_F(ProcessTest, AFirstExitWritesTheSettingsAndRemembersThePlace) {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Brindlecast");
    {
        Player player;
        SetWindowPos(player.MainWindow(), nullptr, 200, 150, 900, 640, SWP_NOZORDER);
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(store.ReadDword(L"RememberWindowPos", TypeCheck::Strict), 1U);
    EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), 200U);
    EXPECT_EQ(store.ReadDword(L"WindowY", TypeCheck::Strict), 150U);
    EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 900U);
    EXPECT_EQ(store.ReadDword(L"WindowH", TypeCheck::Strict), 640U);
    EXPECT_EQ(store.ReadDword(L"WindowMaximized", TypeCheck::Strict), 0U);
    EXPECT_EQ(store.ReadDword(L"SeekbarThumbnailPreview", TypeCheck::Strict), 0U);
    EXPECT_EQ(store.ReadString(L"WelcomeMsg"), L"브린들캐스트 - 동영상 플레이어");
    Player again;
    EXPECT_EQ(ScreenRectOf(again.MainWindow()), (Rect{200, 150, 1100, 790}));
    EXPECT_EQ(again.Close(), 0U);
}

TEST_F(ProcessTest, WithoutRememberingTheStoredPlaceStaysUntouched) {
    store.WriteDword(L"RememberWindowPos", 0);
    store.WriteDword(L"WindowX", 77);
    store.WriteDword(L"WindowW", 500);
    store.WriteDword(L"WindowH", 400);
    {
        Player player;
        EXPECT_EQ(ScreenRectOf(player.MainWindow()).Width(), 1200);
        EXPECT_EQ(player.Close(), 0U);
    }
    EXPECT_EQ(store.ReadDword(L"WindowX", TypeCheck::Strict), 77U);
    EXPECT_EQ(store.ReadDword(L"WindowY", TypeCheck::Strict), std::nullopt);
    EXPECT_EQ(store.ReadDword(L"WindowW", TypeCheck::Strict), 500U);
}

TEST_F(ProcessTest, ClosingWhilePlayingEndsTheProcessInTime) {
    Player player;
    player.Drop({Media(kFilm.name)});
    ASSERT_TRUE(player.WaitForFrame(kFilm).has_value());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(ProcessTest, ValuesOfWrongTypesAreHarmless) {
    for (const wchar_t* name : {L"RememberWindowPos", L"WindowX", L"WindowW", L"Volume", L"Muted",
                                L"LAV_HWAccel", L"LAV_NumThreads", L"LAV_HWAccel_H264", L"LAV_TrayIcon",
                                L"LAV_HWResFlags", L"SeekbarThumbnailPreview"}) {
        store.WriteString(name, L"이것은 숫자가 아닙니다");
    }
    store.WriteDword(L"LAV_PreferredLanguages", 7);
    store.WriteDword(L"WelcomeMsg", 7);
    Player player;
    EXPECT_EQ(ScreenRectOf(player.MainWindow()).Width(), 1200);
    player.Drop({Media(kFilm.name)});
    EXPECT_TRUE(player.WaitForFrame(kFilm).has_value());
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
