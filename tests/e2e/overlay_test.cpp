#include "base/win32/geometry.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/message_picture.h"
#include "tests/e2e/waits.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Key codes that have no name of their own on every layout.
constexpr WORD kOpeningBracket = 0xDB;
constexpr WORD kBackslash = 0xDC;
constexpr WORD kSlash = 0xBF;

constexpr WPARAM kCommandMute = 6020;
constexpr UINT kTogglePlaylist = WM_USER + 213;

constexpr milliseconds kHold{1000};
constexpr milliseconds kFade{300};
// The tick counter that messages are timed by may go in steps of so much.
constexpr milliseconds kTickStep{16};

int Brightest(const Photograph& photograph) {
    return photograph.pixels.empty() ? 0 : *std::ranges::max_element(photograph.pixels);
}

// What a user reads over the video, and that it stays out of the way.
class OverlayTest : public ProgramTest {
protected:
    // Away from the edges of the screen, which have a say in full screen.
    static void RestCursor() {
        MoveCursor({GetSystemMetrics(SM_CXSCREEN) / 2, GetSystemMetrics(SM_CYSCREEN) / 2});
    }

    static void ExpectMessage(const Player& player, WORD key, const std::wstring& text) {
        PressKey(key);
        EXPECT_TRUE(WaitForMessage(player, text)) << "key " << key;
    }

    static bool WaitUntilGone(const Player& player) {
        return WaitUntil(limits::kReaction, "end of a message",
                         [&] { return VisibleMessageWindow(player) == nullptr; });
    }

    static HWND FocusOf(const Player& player) {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        GetGUIThreadInfo(GetWindowThreadProcessId(player.MainWindow(), nullptr), &info);
        return info.hwndFocus;
    }

    static Rect PlaceOf(HWND window) {
        RECT bounds{};
        GetWindowRect(window, &bounds);
        return FromRect(bounds);
    }
};

TEST_F(OverlayTest, KeysTellWhatTheyDidWithoutAFile) {
    const std::pair<WORD, const wchar_t*> steps[] = {
        {VK_UP, L"볼륨 100%"},
        {VK_DOWN, L"볼륨 95%"},
        {'M', L"음소거"},
        {'M', L"음소거 해제"},
        {'D', L"회전 90°"},
        {'E', L"회전 180°"},
        {'H', L"좌우 반전"},
        {'V', L"상하 반전"},
        {'V', L"상하 반전 해제"},
        {'W', L"회전 0°"},
        {'1', L"25%"},
        {kSlash, L"자막 딜레이 초기화"},
        {kBackslash, L"구간 반복 해제"},
        {'F', L"전체화면"},
        {'2', L"50%"},
        {'F', L"전체화면 해제"},
    };
    Player player;
    RestCursor();
    player.Activate();
    for (const auto& [key, text] : steps) {
        ExpectMessage(player, key, text);
    }
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, AFileIsNamedAndKeysTellOfItsPlayback) {
    Player player;
    RestCursor();
    player.Drop({Media(L"song.flac")});
    EXPECT_TRUE(WaitForMessage(player, L"song.flac"));
    player.Activate();
    ExpectMessage(player, VK_SPACE, L"일시정지");
    ExpectMessage(player, VK_LEFT, L"00:00");
    ExpectMessage(player, VK_RIGHT, L"00:05");
    ExpectMessage(player, kOpeningBracket, L"A 지점 설정");
    ExpectMessage(player, 'C', L"1.25x");
    ExpectMessage(player, 'Z', L"1.00x");
    ExpectMessage(player, VK_SPACE, L"재생");
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, OnlyTheMessageItselfIsTakenForIt) {
    Player player;
    const Rect strip = MessageStrip(player);
    const Size size{strip.Width(), strip.Height()};
    ASSERT_TRUE(WaitForMessage(player, L"")) << "the video area comes up black";
    EXPECT_FALSE(MessagePicture(L"볼륨 95%", size).IsOn(PhotographScreen(strip))) << "nothing is on show yet";
    player.Activate();
    ExpectMessage(player, VK_DOWN, L"볼륨 95%");
    const Photograph photograph = PhotographScreen(strip);
    EXPECT_TRUE(MessagePicture(L"볼륨 95%", size).IsOn(photograph));
    EXPECT_FALSE(MessagePicture(L"볼륨 96%", size).IsOn(photograph));
    EXPECT_FALSE(MessagePicture(L"볼륨 95", size).IsOn(photograph));
    EXPECT_FALSE(MessagePicture(L"볼륨 95% 볼륨", size).IsOn(photograph));
    EXPECT_FALSE(MessagePicture(L"", size).IsOn(photograph));
    const Photograph oneRight = PhotographScreen({strip.left + 1, strip.top, strip.right + 1, strip.bottom});
    EXPECT_FALSE(MessagePicture(L"볼륨 95%", size).IsOn(oneRight)) << "the text stands in another place";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, OverAPictureTheTextHasItsShadow) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    PressKey(VK_SPACE);
    ASSERT_TRUE(player.WaitForStandstill(kFilm).has_value());
    ASSERT_TRUE(WaitUntilGone(player));
    const Rect strip = MessageStrip(player);
    const Photograph under = PhotographScreen(strip);
    ASSERT_GT(Brightest(under), 100) << "the picture must reach into the strip";
    const MessagePicture expected(L"음소거", {strip.Width(), strip.Height()});
    PressKey('M');
    EXPECT_TRUE(WaitUntil(limits::kReaction, "a message over the picture",
                          [&] { return expected.IsOver(under, PhotographScreen(strip)); }));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, AMessageHoldsFadesAndIsGone) {
    Player player;
    player.Activate();
    const Rect strip = MessageStrip(player);
    const Rect text{strip.left, strip.top, strip.left + 200, strip.bottom};
    const auto start = Clock::now();
    ExpectMessage(player, 'M', L"음소거");
    int last = 255;
    int levels = 0;
    auto firstFainter = Clock::time_point::max();
    EXPECT_TRUE(WaitUntil(limits::kReaction, "end of a message", [&] {
        const int brightest = Brightest(PhotographScreen(text));
        EXPECT_LE(brightest, last) << "a message never grows brighter";
        if (brightest < last) {
            firstFainter = std::min(firstFainter, Clock::now());
            ++levels;
        }
        last = brightest;
        return VisibleMessageWindow(player) == nullptr;
    }));
    const auto end = Clock::now();
    EXPECT_GE(firstFainter - start, kHold - kTickStep);
    EXPECT_GE(levels, 3) << "it must fade and not vanish";
    EXPECT_GE(end - start, kHold + kFade - kTickStep);
    EXPECT_LE(end - start, kHold + kFade + milliseconds(300));
    EXPECT_TRUE(WaitForMessage(player, L""));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, AMessageInTheFadeOfAnotherIsBrightAndHoldsAgain) {
    Player player;
    player.Activate();
    const Rect strip = MessageStrip(player);
    const Rect text{strip.left, strip.top, strip.left + 200, strip.bottom};
    ExpectMessage(player, 'M', L"음소거");
    ASSERT_TRUE(WaitUntil(limits::kReaction, "the fade", [&] {
        const int brightest = Brightest(PhotographScreen(text));
        return brightest > 0 && brightest < 240;
    }));
    const auto second = Clock::now();
    ExpectMessage(player, 'M', L"음소거 해제");
    ASSERT_TRUE(WaitUntilGone(player));
    EXPECT_GE(Clock::now() - second, kHold + kFade - kTickStep);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, AMessageTakesNeitherFocusNorForeground) {
    Player player;
    player.Activate();
    const HWND focus = FocusOf(player);
    ASSERT_NE(focus, nullptr);
    ExpectMessage(player, 'M', L"음소거");
    EXPECT_EQ(GetForegroundWindow(), player.MainWindow());
    EXPECT_EQ(FocusOf(player), focus);
    // Nor from another program.
    const UniqueHwnd other(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                                           nullptr, nullptr, nullptr));
    SetForegroundWindow(other.Get());
    ASSERT_EQ(GetForegroundWindow(), other.Get());
    player.Send(WM_COMMAND, kCommandMute);
    EXPECT_TRUE(WaitForMessage(player, L"음소거 해제"));
    EXPECT_EQ(GetForegroundWindow(), other.Get());
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, ThePlayListKeepsTheKeyboardWhileAMessageComesUp) {
    Player player;
    player.Activate();
    // To where the list finds room beside it and covers no text.
    SetWindowPos(player.MainWindow(), nullptr, 100, 100, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    player.Send(kTogglePlaylist);
    HWND playlist = nullptr;
    ASSERT_TRUE(WaitUntil(limits::kReaction, "the play list", [&] {
        playlist = player.OwnProcess().FindVisibleWindow(L"BrindlecastPlaylist");
        return playlist != nullptr && GetForegroundWindow() == playlist;
    }));
    const HWND focus = FocusOf(player);
    ASSERT_NE(focus, nullptr);
    player.Send(WM_COMMAND, kCommandMute);
    EXPECT_TRUE(WaitForMessage(player, L"음소거"));
    EXPECT_EQ(GetForegroundWindow(), playlist);
    EXPECT_EQ(FocusOf(player), focus);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, ClicksOnAMessageReachTheVideo) {
    Player player;
    ASSERT_TRUE(player.Play(kFilm));
    player.Activate();
    PressKey('M');
    ASSERT_TRUE(
        WaitUntil(limits::kReaction, "a message", [&] { return VisibleMessageWindow(player) != nullptr; }));
    const Rect strip = MessageStrip(player);
    DoubleClick({strip.left + 40, strip.top + 30});
    EXPECT_TRUE(player.WaitForStandstill(kFilm).has_value()) << "a double click pauses";
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, AMovedWindowIsFollowedOnlyWhileFading) {
    Player player;
    player.Activate();
    const auto start = Clock::now();
    ExpectMessage(player, 'M', L"음소거");
    const HWND overlay = VisibleMessageWindow(player);
    ASSERT_NE(overlay, nullptr);
    const Rect before = PlaceOf(player.VideoWindow());
    EXPECT_EQ(PlaceOf(overlay), before);
    const Rect window = PlaceOf(player.MainWindow());
    SetWindowPos(player.MainWindow(), nullptr, window.left + 60, window.top + 40, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    const Rect after = PlaceOf(player.VideoWindow());
    ASSERT_EQ(after, (Rect{before.left + 60, before.top + 40, before.right + 60, before.bottom + 40}));
    EXPECT_EQ(PlaceOf(overlay), before) << "it holds";
    ASSERT_TRUE(WaitUntil(limits::kReaction, "following", [&] { return PlaceOf(overlay) == after; }));
    EXPECT_GE(Clock::now() - start, kHold - kTickStep);
    EXPECT_NE(IsWindowVisible(overlay), FALSE) << "it follows while it can still be seen";
    EXPECT_TRUE(WaitUntilGone(player));
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(OverlayTest, ANewMessageLiesOverAMovedWindowAtOnce) {
    Player player;
    player.Activate();
    ExpectMessage(player, 'M', L"음소거");
    const Rect window = PlaceOf(player.MainWindow());
    SetWindowPos(player.MainWindow(), nullptr, window.left + 60, window.top + 40, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    ExpectMessage(player, 'M', L"음소거 해제");
    EXPECT_EQ(PlaceOf(VisibleMessageWindow(player)), PlaceOf(player.VideoWindow()));
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
