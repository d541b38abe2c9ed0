#include "tests/support/capture/sound_match.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

namespace brindlecast::testing {
namespace {

constexpr int kRate = 48000;

// Something like music: three voices whose notes change at random times.
Recording Music(unsigned seed, double seconds) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> length(0.15, 0.6);
    std::uniform_real_distribution<double> pitch(100, 2000);
    const auto count = static_cast<std::size_t>(seconds * kRate);
    Recording music{kRate, std::vector<double>(count), std::vector<double>(count)};
    for (int voice = 0; voice < 3; ++voice) {
        double until = 0;
        double frequency = 0;
        double phase = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (static_cast<double>(i) / kRate >= until) {
                until += length(random);
                frequency = pitch(random);
            }
            phase += 6.283185307 * frequency / kRate;
            const double value = 0.08 * std::sin(phase);
            music.left[i] += value;
            music.right[i] += voice == 0 ? 0 : value;
        }
    }
    return music;
}

// A recording of `seconds` that begins 0.5 s before the hand-over and hears the source after `delay` seconds.
Recording Heard(
    const Recording& source, double delay, double seconds,
    const std::function<double(double)>& volume = [](double) { return 1.0; }) {
    const auto count = static_cast<std::size_t>(seconds * kRate);
    Recording recording{kRate, std::vector<double>(count), std::vector<double>(count)};
    const auto shift = static_cast<std::ptrdiff_t>((0.5 + delay) * kRate);
    for (std::size_t i = 0; i < count; ++i) {
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(i) - shift;
        if (at >= 0 && at < static_cast<std::ptrdiff_t>(source.left.size())) {
            const double factor = volume(static_cast<double>(i) / kRate);
            recording.left[i] = factor * source.left[static_cast<std::size_t>(at)];
            recording.right[i] = factor * source.right[static_cast<std::size_t>(at)];
        }
    }
    return recording;
}

TEST(SoundMatch, ARightRunPassesAtAnyVolume) {
    const Recording source = Music(1, 8);
    for (const double volume : {1.0, 0.05, 2.5}) {
        const SoundMatch match =
            MatchSound(Heard(source, 0.7, 7, [=](double) { return volume; }), -0.5, source);
        EXPECT_TRUE(match.heard) << match.complaint;
        EXPECT_NEAR(match.delay, 0.7, 0.005);
        EXPECT_TRUE(match.delayIsSure);
        EXPECT_GT(match.likeness, 0.95);
        EXPECT_NEAR(match.level - match.source, 20 * std::log10(volume), 0.5);
    }
}

TEST(SoundMatch, ChangingVolumeAndAShortPauseDoNoHarm) {
    const Recording source = Music(1, 8);
    const auto swelling = [](double time) {
        return 0.4 + 0.3 * std::sin(4 * time);
    };
    EXPECT_TRUE(MatchSound(Heard(source, 0.7, 7, swelling), -0.5, source).heard);
    Recording paused = Heard(source, 0.7, 7);
    const auto middle = paused.left.begin() + 3 * kRate;
    std::rotate(middle, paused.left.end() - kRate / 8, paused.left.end());
    std::rotate(paused.right.begin() + 3 * kRate, paused.right.end() - kRate / 8, paused.right.end());
    EXPECT_TRUE(MatchSound(paused, -0.5, source).heard);
}

TEST(SoundMatch, StutterOfABusyMachinePasses) {
    const Recording source = Music(1, 8);
    Recording stutter = Heard(source, 0.7, 7);
    for (auto* channel : {&stutter.left, &stutter.right}) {
        for (std::ptrdiff_t at = 2 * kRate; at < 6 * kRate; at += kRate / 4) {
            channel->insert(channel->begin() + at, kRate / 100, 0.0);
        }
    }
    const SoundMatch match = MatchSound(stutter, -0.5, source);
    EXPECT_TRUE(match.heard) << match.complaint << match.likeness;
}

TEST(SoundMatch, ASourceThatBeginsQuietlyPasses) {
    Recording source = Music(1, 9);
    std::fill_n(source.left.begin(), 4 * kRate, 0.0);
    std::fill_n(source.right.begin(), 4 * kRate, 0.0);
    const SoundMatch match = MatchSound(Heard(source, 0.7, 9), -0.5, source);
    EXPECT_TRUE(match.heard) << match.complaint;
    EXPECT_NEAR(match.delay, 0.7, 0.005);
}

TEST(SoundMatch, ASilentRunFails) {
    const Recording source = Music(1, 8);
    const Recording silent{kRate, std::vector<double>(7 * kRate), std::vector<double>(7 * kRate)};
    EXPECT_EQ(MatchSound(silent, -0.5, source).complaint, "the recording is silent");
}

TEST(SoundMatch, ASilentSourceTellsNothing) {
    const Recording silent{kRate, std::vector<double>(7 * kRate), std::vector<double>(7 * kRate)};
    EXPECT_FALSE(MatchSound(silent, -0.5, silent).heard);
    EXPECT_FALSE(MatchSound(Music(1, 7), -0.5, silent).heard);
}

TEST(SoundMatch, AnotherSoundFails) {
    const Recording source = Music(1, 8);
    for (unsigned seed = 2; seed < 6; ++seed) {
        const SoundMatch match = MatchSound(Heard(Music(seed, 8), 0.7, 7), -0.5, source);
        EXPECT_FALSE(match.heard) << match.likeness;
    }
    std::mt19937 random(9);
    std::normal_distribution<double> noise(0, 0.1);
    Recording hiss = Heard(source, 0.7, 7);
    std::generate(hiss.left.begin(), hiss.left.end(), [&] { return noise(random); });
    std::generate(hiss.right.begin(), hiss.right.end(), [&] { return noise(random); });
    EXPECT_FALSE(MatchSound(hiss, -0.5, source).heard);
}

TEST(SoundMatch, SoundApartFromThePictureFails) {
    const Recording source = Music(1, 8);
    const Recording recording = Heard(source, 1.7, 7);
    EXPECT_TRUE(MatchSound(recording, -0.5, source, 1.4).heard);
    EXPECT_FALSE(MatchSound(recording, -0.5, source, 0.5).heard);
    EXPECT_FALSE(MatchSound(recording, -0.5, source, 0.5).together);
    EXPECT_FALSE(MatchSound(recording, -0.5, source, 2.9).heard);
}

TEST(SoundMatch, HolesFail) {
    const Recording source = Music(1, 8);
    const auto torn = [](double time) {
        return std::fmod(time, 1.0) < 0.25 ? 0.0 : 1.0;
    };
    EXPECT_EQ(MatchSound(Heard(source, 0.7, 7, torn), -0.5, source).complaint, "the sound has holes");
    const auto ended = [](double time) {
        return time > 4 ? 0.0 : 1.0;
    };
    EXPECT_FALSE(MatchSound(Heard(source, 0.7, 7, ended), -0.5, source).heard);
}

} // namespace
} // namespace brindlecast::testing
