#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"

#include <chrono>
#include <cmath>

namespace brindlecast::testing {
namespace {

using std::chrono::milliseconds;

constexpr UINT kSeek = 1230; // wParam: ten-thousandths of the duration
constexpr WPARAM kMenuToggleRate = 5015;
constexpr WPARAM kMenuSlower = 5016;
constexpr WPARAM kMenuFaster = 5017;
constexpr WPARAM kMenuQuarter = 5030;
constexpr WPARAM kMenuNormal = 5034;
constexpr WPARAM kMenuFourfold = 5041;
// Rates that show the film at as many frames a second.
constexpr WPARAM kMenu23Point976 = 5050;
constexpr WPARAM kMenu25 = 5052;
constexpr WPARAM kMenu30 = 5054;
constexpr WPARAM kMenu60 = 5056;

constexpr Film kCinemaFilm{L"film_1080p.mkv", 1920, 1080, 24.0};

// Of a pace that is read from the screen for a second and a half.
constexpr double kPaceTolerance = 0.03;

// The pace of the picture as the user sees it.
class RateKeysTest : public ProgramTest {
protected:
    static void Play(Player& player, const Film& film) {
        ASSERT_TRUE(player.Play(film));
        player.Activate();
    }
    // Film seconds that go by in a second: the slope of the straight line that fits the readings best. The
    // film begins anew for it, so that it doesn't end meanwhile.
    static double PaceOf(const Player& player, const Film& film) {
        EXPECT_EQ(player.Send(kSeek, 0), 0);
        EXPECT_TRUE(player.WaitForFrameNumber(film, 0));
        // That frame stands until the clock runs.
        EXPECT_TRUE(WaitUntil(limits::kReaction, "moving picture",
                              [&] { return player.FrameOnScreen(film).value_or(0) >= 2; }));
        const auto readings = player.Watch(film, milliseconds(1500));
        double count = 0;
        double times = 0;
        double places = 0;
        double products = 0;
        double squares = 0;
        for (const TimedMark& reading : readings) {
            if (reading.number) {
                const double place = *reading.number / film.framesPerSecond;
                ++count;
                times += reading.seconds;
                places += place;
                products += reading.seconds * place;
                squares += reading.seconds * reading.seconds;
            }
        }
        EXPECT_GE(count, 15) << "too few readings to tell a pace";
        return (count * products - times * places) / (count * squares - times * times);
    }
    static void ExpectPace(const Player& player, const Film& film, double rate) {
        EXPECT_NEAR(PaceOf(player, film), rate, kPaceTolerance * rate);
    }
};

TEST_F(RateKeysTest, CAndXGoAQuarterFasterAndSlower) {
    Player player;
    Play(player, kFilm);
    PressKey('C');
    PressKey('C');
    ExpectPace(player, kFilm, 1.5);
    PressKey('X');
    ExpectPace(player, kFilm, 1.25);
    PressKey('X');
    PressKey('X');
    ExpectPace(player, kFilm, 0.75);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RateKeysTest, ZGoesBackToNormalAndReturns) {
    Player player;
    Play(player, kFilm);
    // Nothing to return to yet.
    PressKey('Z');
    ExpectPace(player, kFilm, 1.0);
    PressKey('C');
    PressKey('C');
    PressKey('Z');
    ExpectPace(player, kFilm, 1.0);
    PressKey('Z');
    ExpectPace(player, kFilm, 1.5);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuToggleRate), 0);
    ExpectPace(player, kFilm, 1.0);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuToggleRate), 0);
    ExpectPace(player, kFilm, 1.5);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RateKeysTest, TheRateStaysWithinAQuarterAndFour) {
    Player player;
    Play(player, kFilm);
    for (int press = 0; press < 5; ++press) {
        PressKey('X');
    }
    ExpectPace(player, kFilm, 0.25);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuFourfold), 0);
    PressKey('C');
    ExpectPace(player, kFilm, 4.0);
    PressKey('X');
    ExpectPace(player, kFilm, 3.75);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuQuarter), 0);
    ExpectPace(player, kFilm, 0.25);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RateKeysTest, TheMenuGoesATenthSlowerAndFasterWithoutAMessage) {
    Player player;
    Play(player, kFilm);
    const auto isQuiet = [&] {
        return player.OwnProcess().FindVisibleWindow(L"BrindlecastOverlay") == nullptr;
    };
    ASSERT_TRUE(WaitUntil(limits::kReaction, "end of a message", isQuiet));
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuSlower), 0);
    EXPECT_TRUE(isQuiet());
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuFaster), 0);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuSlower), 0);
    EXPECT_TRUE(isQuiet());
    ExpectPace(player, kFilm, 0.9);
    for (int times = 0; times < 3; ++times) {
        EXPECT_EQ(player.Send(WM_COMMAND, kMenuFaster), 0);
    }
    ExpectPace(player, kFilm, 1.2);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RateKeysTest, AFrameRateIsReachedFromThatOfTheFilm) {
    Player player;
    Play(player, kFilm);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenu30), 0);
    ExpectPace(player, kFilm, 1.2);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenu60), 0);
    ExpectPace(player, kFilm, 2.4);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenu25), 0);
    ExpectPace(player, kFilm, 1.0);
    // A film of 24 frames a second is a thousandth faster than one of 23.976.
    Play(player, kCinemaFilm);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenu30), 0);
    ExpectPace(player, kCinemaFilm, 1.25);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenu23Point976), 0);
    ExpectPace(player, kCinemaFilm, 0.999);
    EXPECT_EQ(player.Close(), 0U);
}

TEST_F(RateKeysTest, TheNextFilmStartsAtItsOwnPace) {
    Player player;
    Play(player, kFilm);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuFourfold), 0);
    Play(player, kFilmMp4);
    ExpectPace(player, kFilmMp4, 1.0);
    // The number that the keys count from is still that of before.
    PressKey('X');
    ExpectPace(player, kFilmMp4, 3.75);
    EXPECT_EQ(player.Send(WM_COMMAND, kMenuNormal), 0);
    ExpectPace(player, kFilmMp4, 1.0);
    EXPECT_EQ(player.Close(), 0U);
}

} // namespace
} // namespace brindlecast::testing
