#include "tests/support/tone_analysis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace brindlecast::testing {
namespace {

constexpr int kRate = 48000;

std::vector<double> Tone(double frequency, double level, double seconds, double phase = 0) {
    std::vector<double> samples(static_cast<std::size_t>(seconds * kRate));
    const double amplitude = std::numbers::sqrt2 * std::pow(10.0, level / 20);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(i) / kRate + phase;
        samples[i] = amplitude * std::sin(angle);
    }
    return samples;
}

// What a film sounds like from `startsAt` seconds on.
Recording Film(double frequency, double level, double startsAt, double seconds) {
    Recording recording{kRate, Tone(frequency, level, seconds), {}};
    double phase = 0;
    for (std::size_t i = 0; i < recording.left.size(); ++i) {
        const double at = startsAt + static_cast<double>(i) / kRate;
        const double second = std::floor(at);
        phase += 2 * std::numbers::pi * (kPositionBase + kPositionStep * second) / kRate;
        recording.right.push_back((at - second < kTickLength ? 0.2 : 0.1) * std::sin(phase));
    }
    return recording;
}

TEST(Level, OfKnownSignals) {
    EXPECT_NEAR(LevelDbfs(Tone(440, -20, 1)), -20.0, 0.01);
    EXPECT_NEAR(LevelDbfs(std::vector<double>(100, 1.0)), 0.0, 1e-9);
    EXPECT_EQ(LevelDbfs(std::vector<double>(100, 0.0)), kNoLevel);
    EXPECT_EQ(LevelDbfs({}), kNoLevel);
}

TEST(Frequency, ToATenthOfAHertz) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> anyPhase(0, 6.28);
    for (const double frequency : {61.3, 220.0, 440.0, 441.7, 659.26, 1000.4, 5000.05, 15999.9}) {
        for (const double seconds : {0.25, 0.5, 1.0}) {
            const auto found = DominantFrequency(Tone(frequency, -20, seconds, anyPhase(random)), kRate);
            ASSERT_TRUE(found);
            EXPECT_NEAR(*found, frequency, 0.1) << seconds;
        }
    }
}

TEST(Frequency, TheStrongerOfTwoAndUnderNoise) {
    std::vector<double> mixed = Tone(440, -20, 0.5);
    const std::vector<double> other = Tone(660, -26, 0.5);
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0, 0.02);
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        mixed[i] += other[i] + noise(random);
    }
    EXPECT_NEAR(DominantFrequency(mixed, kRate).value_or(0), 440.0, 0.1);
}

TEST(Frequency, NothingInSilenceOrTooFewSamples) {
    EXPECT_FALSE(DominantFrequency(std::vector<double>(4800, 0.0), kRate));
    EXPECT_FALSE(DominantFrequency(Tone(440, -20, 0.001), kRate));
}

TEST(Position, TonesOfSeconds) {
    EXPECT_EQ(SecondOfTone(1000), 0);
    EXPECT_EQ(SecondOfTone(1041), 1);
    EXPECT_EQ(SecondOfTone(1760.4), 19);
    EXPECT_FALSE(SecondOfTone(1020));
    EXPECT_FALSE(SecondOfTone(440));
}

TEST(Silence, IntervalsOfAtLeastTheLength) {
    std::vector<double> samples = Tone(440, -20, 1.0);
    std::fill_n(samples.begin() + kRate / 4, kRate / 10, 0.0);
    std::fill_n(samples.begin() + kRate / 2, kRate / 100, 0.0);
    const auto found = SilentIntervals(samples, kRate, -60, 0.05);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_NEAR(found[0].begin, 0.25, 0.006);
    EXPECT_NEAR(found[0].end, 0.35, 0.006);
    EXPECT_EQ(SilentIntervals(samples, kRate, -60, 0.005).size(), 2U);
    const auto all = SilentIntervals(std::vector<double>(kRate, 0.0), kRate, -60, 0.05);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_NEAR(all[0].end, 1.0, 1e-6);
}

TEST(Onset, ToAMillisecond) {
    for (const double start : {0.0, 0.1234, 0.5, 0.7777}) {
        std::vector<double> samples(static_cast<std::size_t>(start * kRate), 0.0);
        const std::vector<double> tone = Tone(440, -20, 0.5, 0.3);
        samples.insert(samples.end(), tone.begin(), tone.end());
        const auto found = OnsetTime(samples, kRate, -30);
        ASSERT_TRUE(found);
        EXPECT_NEAR(*found, start, 0.001);
    }
    EXPECT_FALSE(OnsetTime(std::vector<double>(kRate, 0.0), kRate, -60));
}

TEST(Ticks, OpenTheirSeconds) {
    const Recording film = Film(440, -20, 7.4, 4.0);
    const auto ticks = FindTicks(film.right, kRate);
    ASSERT_EQ(ticks.size(), 4U);
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        EXPECT_EQ(ticks[i].filmSecond, static_cast<int>(8 + i));
        EXPECT_NEAR(ticks[i].recordedAt, 0.6 + static_cast<double>(i), 0.002);
    }
    EXPECT_TRUE(FindTicks(std::vector<double>(kRate, 0.0), kRate).empty());
    EXPECT_TRUE(FindTicks(Tone(1200, -20, 3), kRate).empty());
}

TEST(SplitStereo, SeparatesChannels) {
    const std::vector<std::int16_t> samples{16384, -16384, 0, 32767, 1};
    const Recording recording = SplitStereo(samples, kRate);
    EXPECT_EQ(recording.left, (std::vector<double>{0.5, 0.0}));
    EXPECT_EQ(recording.right, (std::vector<double>{-0.5, 32767 / 32768.0}));
}

TEST(JudgeSound, TellsARightRunFromWrongOnes) {
    const ExpectedSound expected{440, -20, 0.5, 2.25, 0.05};
    EXPECT_TRUE(JudgeSound(Film(440, -20, 2.25, 4), expected).Right());
    EXPECT_TRUE(JudgeSound(Film(440, -20, 2.29, 4), expected).Right());

    const Recording silent{kRate, std::vector<double>(kRate * 4, 0.0), std::vector<double>(kRate * 4, 0.0)};
    const SoundVerdict nothing = JudgeSound(silent, expected);
    EXPECT_FALSE(nothing.audible || nothing.rightTone || nothing.rightLevel || nothing.inStep);

    const SoundVerdict shifted = JudgeSound(Film(440, -20, 2.45, 4), expected);
    EXPECT_TRUE(shifted.audible && shifted.rightTone && shifted.rightLevel);
    EXPECT_FALSE(shifted.inStep);
    EXPECT_NEAR(shifted.largestLag, 0.2, 0.002);

    EXPECT_FALSE(JudgeSound(Film(440, -20, 12.25, 4), expected).inStep);
    EXPECT_FALSE(JudgeSound(Film(660, -20, 2.25, 4), expected).rightTone);
    EXPECT_FALSE(JudgeSound(Film(440, -26, 2.25, 4), expected).rightLevel);
    Recording torn = Film(440, -20, 2.25, 4);
    std::fill_n(torn.left.begin() + kRate, kRate / 10, 0.0);
    EXPECT_FALSE(JudgeSound(torn, expected).audible);
    EXPECT_FALSE(JudgeSound(Recording{kRate, {}, {}}, expected).Right());
}

} // namespace
} // namespace brindlecast::testing
