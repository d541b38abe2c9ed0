#include "base/win32/unique_handle.h"
#include "bench/host_process.h"
#include "bench/report.h"
#include "tests/e2e/environment.h"
#include "tests/e2e/fixture.h"
#include "tests/e2e/input.h"
#include "tests/e2e/waits.h"
#include "tests/e2e/witness.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <vector>

namespace brindlecast::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 7;
constexpr int kStarts = 15;
constexpr Film kLargeFilm{L"film_1080p.mkv", 1920, 1080, 24.0};

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Empty the key, so that no stored placement moves the window.
class PlayerBench : public ProgramTest {};

// Looks as often as it can; false when the limit has passed.
bool Poll(const std::function<bool()>& condition) {
    const auto start = Clock::now();
    while (!condition()) {
        if (Clock::now() - start > limits::kStart) {
            return false;
        }
        Sleep(1);
    }
    return true;
}

// A white window over the whole screen, on which everything that is painted can be told.
class WhiteScreen {
public:
    WhiteScreen()
        : width(GetSystemMetrics(SM_CXSCREEN)), height(GetSystemMetrics(SM_CYSCREEN)),
          window(CreateWindowExW(WS_EX_NOACTIVATE, L"STATIC", L"", WS_POPUP | WS_VISIBLE | SS_WHITERECT, 0, 0,
                                 width, height, nullptr, nullptr, nullptr, nullptr)) {}

    // Paints what windows before have left, and waits until that is seen.
    [[nodiscard]] bool Clear() const {
        return Poll([this] {
            MSG message{};
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
                DispatchMessageW(&message);
            }
            const auto points = PartsOfPlayer();
            return std::ranges::all_of(points, IsWhite);
        });
    }
    // Whether every part of a player's first window covers it.
    [[nodiscard]] bool IsCovered() const {
        const auto points = PartsOfPlayer();
        return std::ranges::none_of(points, IsWhite);
    }

private:
    static bool IsWhite(Point point) {
        return PhotographScreen({point.x, point.y, point.x + 1, point.y + 1}).At({0, 0}) ==
               Rgb{255, 255, 255};
    }
    // In the middle of the title bar, of the picture and of the tool bar, and two corners of the frame.
    [[nodiscard]] std::array<Point, 5> PartsOfPlayer() const {
        constexpr Size kPlayer{1200, 816};
        const int left = (width - kPlayer.width) / 2;
        const int top = (height - kPlayer.height) / 2;
        const int middle = width / 2;
        return {Point{left + 1, top + 1}, Point{middle, top + 19}, Point{middle, height / 2},
                Point{middle, top + kPlayer.height - 33},
                Point{left + kPlayer.width - 2, top + kPlayer.height - 2}};
    }

    int width;
    int height;
    UniqueHwnd window;
};

TEST_F(PlayerBench, StartToWindow) {
    const WhiteScreen screen;
    std::vector<double> visible;
    std::vector<double> painted;
    for (int round = 0; round < kStarts; ++round) {
        ASSERT_TRUE(screen.Clear());
        const auto start = Clock::now();
        const Process process(PlayerStart());
        HWND window = nullptr;
        ASSERT_TRUE(
            Poll([&] { return (window = process.FindVisibleWindow(L"BrindlecastMainWindow")) != nullptr; }));
        visible.push_back(MillisecondsSince(start));
        ASSERT_TRUE(Poll([&] { return screen.IsCovered(); }));
        painted.push_back(MillisecondsSince(start));
        PostMessageW(window, WM_CLOSE, 0, 0);
        ASSERT_EQ(process.WaitForEnd(limits::kExit), 0U);
    }
    Report("process start to visible window", visible);
    Report("process start to painted window", painted);
}

// The witness opens its file before the program's entry point runs, and after all libraries are loaded.
TEST_F(PlayerBench, StartToOwnCode) {
    std::vector<double> spent;
    for (int round = 0; round < kStarts; ++round) {
        const Witness witness;
        const auto start = Clock::now();
        const Process process({Witness::Program(), L"", std::nullopt});
        ASSERT_TRUE(Poll([] { return std::filesystem::exists(ReportFolder() + L"\\witness.log"); }));
        spent.push_back(MillisecondsSince(start));
        HWND window = nullptr;
        ASSERT_TRUE(
            Poll([&] { return (window = process.FindVisibleWindow(L"BrindlecastMainWindow")) != nullptr; }));
        PostMessageW(window, WM_CLOSE, 0, 0);
        ASSERT_EQ(process.WaitForEnd(limits::kExit), 0U);
    }
    Report("process start to the first code of our own (witness)", spent);
}

// The processor time that the player takes in a second, three times over a length.
std::vector<double> ProcessorTimesASecond(std::chrono::seconds length) {
    LetPlay(std::chrono::seconds(1)); // what the last step has begun
    const HostProcess process(ProgramFolder() + L"\\Brindlecast.exe");
    std::vector<double> times;
    for (int round = 0; round < 3; ++round) {
        const auto start = Clock::now();
        const double before = process.ProcessorMilliseconds();
        LetPlay(length);
        times.push_back((process.ProcessorMilliseconds() - before) * 1000.0 / MillisecondsSince(start));
    }
    return times;
}

TEST_F(PlayerBench, ProcessorTime) {
    using std::chrono::seconds;
    Player player;
    Report("processor time a second with nothing open", ProcessorTimesASecond(seconds(10)));
    for (const Film& film : {kFilm, kLargeFilm}) {
        const std::string shape = film.width > 1000 ? "1080p" : "180p";
        ASSERT_TRUE(player.Play(film));
        Report("processor time a second, playing, " + shape, ProcessorTimesASecond(seconds(2)));
        ASSERT_TRUE(player.IsOpen()) << "the film ended meanwhile";
        player.Activate();
        PressKey(VK_SPACE);
        ASSERT_TRUE(player.WaitForStandstill(film).has_value());
        Report("processor time a second, paused, " + shape, ProcessorTimesASecond(seconds(10)));
    }
    ASSERT_EQ(player.Close(), 0U);
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
