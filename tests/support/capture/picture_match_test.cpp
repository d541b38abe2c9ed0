#include "tests/support/capture/picture_match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>

namespace brindlecast::testing {
namespace {

constexpr int kWidth = 48;
constexpr int kHeight = 27;
constexpr double kRate = 25;

using Pixels = std::vector<std::uint8_t>;

// A film of waves that wander; with `speed` 0 it stands still.
Pixels FilmFrame(int width, int height, double seconds, double speed = 1) {
    Pixels pixels(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double wave = std::sin(8.0 * x / width + (3 + 0.3 * seconds) * speed * seconds) *
                                std::cos(5.0 * y / height);
            std::uint8_t* pixel = &pixels[(static_cast<std::size_t>(y) * width + x) * 4];
            pixel[0] = static_cast<std::uint8_t>(120 + 90 * wave);
            pixel[1] = static_cast<std::uint8_t>(130 - 70 * wave);
            pixel[2] =
                static_cast<std::uint8_t>(100 + 60 * std::sin(6.0 * y / height - 1.9 * speed * seconds));
        }
    }
    return pixels;
}

ReferenceFilm Film(double seconds, double speed = 1) {
    ReferenceFilm film{{}, kRate, 16, 9};
    for (int i = 0; i < seconds * kRate; ++i) {
        const Pixels frame = FilmFrame(kWidth, kHeight, i / kRate, speed);
        film.frames.push_back(
            Shrink({frame.data(), kWidth, kHeight, kWidth * 4}, {0, 0, kWidth, kHeight}, kWidth, kHeight));
    }
    return film;
}

// A window of 480x320 with a title bar of 24 pixels, showing the film as `position` tells from the time.
struct Showing {
    template <typename Position>
    Showing(double seconds, Position position, double speed = 1) {
        for (double time = 0.2; time < seconds; time += 0.31) {
            Pixels window(static_cast<std::size_t>(480) * 320 * 4, 20);
            const std::optional<double> at = position(time);
            const PixelRect place = FitPicture({2, 26, 476, 292}, 16, 9);
            const Pixels frame =
                at ? FilmFrame(place.width, place.height, std::floor(*at * kRate) / kRate, speed) : Pixels();
            for (int y = 0; y < place.height && at; ++y) {
                std::copy_n(&frame[static_cast<std::size_t>(y) * place.width * 4], place.width * 4,
                            &window[(static_cast<std::size_t>(place.top + y) * 480 + place.left) * 4]);
            }
            windows.push_back(std::move(window));
            times.push_back(time);
        }
        for (std::size_t i = 0; i < windows.size(); ++i) {
            grabs.push_back({times[i], {windows[i].data(), 480, 320, 480 * 4}});
        }
    }
    std::vector<Pixels> windows;
    std::vector<double> times;
    std::vector<Grab> grabs;
};

std::optional<double> After(double delay, double time) {
    return time < delay ? std::nullopt : std::optional(time - delay);
}

TEST(PictureMatch, ARightRunPasses) {
    const Showing run(7, [](double time) { return After(0.6, time); });
    const PictureVerdict verdict = JudgePicture(run.grabs, Film(8));
    EXPECT_TRUE(verdict.seen) << verdict.complaint;
    EXPECT_NEAR(verdict.delay, 0.6, 0.05);
    EXPECT_TRUE(verdict.delayIsSure);
    EXPECT_GT(verdict.decibels, 28);
    EXPECT_NEAR(verdict.place.left, FitPicture({2, 26, 476, 292}, 16, 9).left, 6);
    EXPECT_NEAR(verdict.place.top, FitPicture({2, 26, 476, 292}, 16, 9).top, 6);
    EXPECT_FALSE(verdict.still);
}

TEST(PictureMatch, AStillFilmPassesWhenItIsShown) {
    const Showing run(
        5, [](double time) { return After(0.6, time); }, 0);
    const PictureVerdict verdict = JudgePicture(run.grabs, Film(6, 0));
    EXPECT_TRUE(verdict.seen) << verdict.complaint;
    EXPECT_TRUE(verdict.still);
    EXPECT_FALSE(verdict.delayIsSure);
}

TEST(PictureMatch, AWindowThatIsNotReadyAtFirstDoesNoHarm) {
    Showing run(7, [](double time) { return After(0.1, time); });
    for (std::size_t i = 0; i < run.windows.front().size(); ++i) {
        run.windows.front()[i] = i / 4 % 480 < 240 ? 0 : 255;
    }
    const PictureVerdict verdict = JudgePicture(run.grabs, Film(8));
    EXPECT_TRUE(verdict.seen) << verdict.complaint;
}

TEST(PictureMatch, ABlackRunFails) {
    const Showing run(5, [](double) { return std::optional<double>(); });
    EXPECT_EQ(JudgePicture(run.grabs, Film(6)).complaint, "the window is black or plain");
    EXPECT_EQ(JudgePicture(run.grabs, Film(6, 0)).complaint, "the window is black or plain");
}

TEST(PictureMatch, AFrozenRunFails) {
    const Showing run(5, [](double time) { return time < 0.6 ? std::nullopt : std::optional(1.0); });
    const PictureVerdict verdict = JudgePicture(run.grabs, Film(6));
    EXPECT_FALSE(verdict.seen);
    EXPECT_EQ(verdict.complaint, "the picture stands still while the film moves");
}

TEST(PictureMatch, ARunThatFreezesMidwayFails) {
    const Showing run(7, [](double time) { return After(0.6, std::min(time, 4.0)); });
    EXPECT_FALSE(JudgePicture(run.grabs, Film(8)).seen);
}

TEST(PictureMatch, AWrongPaceOrAnotherFilmFails) {
    const Showing slow(7, [](double time) { return After(0.6, 0.6 + (time - 0.6) * 0.6); });
    EXPECT_FALSE(JudgePicture(slow.grabs, Film(8)).seen);
    const Showing backwards(7, [](double time) { return std::optional(8 - time); });
    EXPECT_FALSE(JudgePicture(backwards.grabs, Film(8)).seen);
    const Showing other(
        7, [](double time) { return After(0.6, time); }, -1);
    EXPECT_FALSE(JudgePicture(other.grabs, Film(8)).seen);
    const Showing late(7, [](double time) { return std::optional(time + 4); });
    EXPECT_FALSE(JudgePicture(late.grabs, Film(12)).seen);
}

TEST(PictureMatch, TellsNothingAboutAPlainFilm) {
    ReferenceFilm plain = Film(6);
    for (Thumbnail& frame : plain.frames) {
        std::fill(frame.values.begin(), frame.values.end(), 0.0F);
    }
    const Showing run(5, [](double) { return std::optional<double>(); });
    EXPECT_FALSE(JudgePicture(run.grabs, plain).seen);
    EXPECT_FALSE(JudgePicture({}, Film(6)).seen);
}

} // namespace
} // namespace brindlecast::testing
