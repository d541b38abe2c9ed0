#include "tests/e2e/environment.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 7;
constexpr Film kLargeFilm{L"film_1080p.mkv", 1920, 1080, 24.0};

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void Report(const char* what, std::vector<double> milliseconds) {
    std::ranges::sort(milliseconds);
    std::printf("%-52s %8.0f ms (%.0f to %.0f)\n", what, milliseconds[milliseconds.size() / 2],
                milliseconds.front(), milliseconds.back());
}

// Empty the key, so that no stored placement moves the window.
class PlayerBench : public ProgramTest {};

TEST_F(PlayerBench, StartToWindow) {
    std::vector<double> spent;
    for (int round = 0; round < kRounds; ++round) {
        const auto start = Clock::now();
        Player player;
        spent.push_back(MillisecondsSince(start));
        ASSERT_EQ(player.Close(), 0U);
    }
    Report("process start to visible window", spent);
}

TEST_F(PlayerBench, DropToFirstFrame) {
    for (const Film& film : {kFilm, kLargeFilm}) {
        std::vector<double> spent;
        for (int round = 0; round < kRounds; ++round) {
            Player player;
            const auto start = Clock::now();
            player.Drop({Media(film.name)});
            ASSERT_TRUE(player.WaitForFrame(film).has_value());
            spent.push_back(MillisecondsSince(start));
            ASSERT_EQ(player.Close(), 0U);
        }
        Report(film.width > 1000 ? "drop to first frame on the screen, 1080p"
                                 : "drop to first frame on the screen, 180p",
               spent);
    }
}

TEST_F(PlayerBench, KeyToNewFrame) {
    for (const Film& film : {kFilm, kLargeFilm}) {
        Player player;
        ASSERT_TRUE(player.Play(film));
        player.Activate();
        PressKey(VK_SPACE);
        LetPlay(std::chrono::milliseconds(500));
        std::vector<double> spent;
        for (int round = 0; round < kRounds; ++round) {
            const auto before = player.FrameOnScreen(film);
            const auto start = Clock::now();
            PressKey(round % 2 == 0 ? VK_RIGHT : VK_LEFT);
            ASSERT_TRUE(WaitUntil(limits::kReaction, "a new frame", [&] {
                const auto now = player.FrameOnScreen(film);
                return now && now != before;
            }));
            spent.push_back(MillisecondsSince(start));
        }
        Report(film.width > 1000 ? "key to new frame after a keyframe seek, 1080p"
                                 : "key to new frame after a keyframe seek, 180p",
               spent);
        ASSERT_EQ(player.Close(), 0U);
    }
}

} // namespace
} // namespace brindlecast::testing
