#include "filters/core/audio_stretch.h"
#include "tests/support/tone_analysis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>

namespace brindlecast {
namespace {

constexpr double kAmplitude = 0.5;
constexpr double kSeconds = 3.0;

using Bytes = std::vector<std::uint8_t>;

double ToneOf(int channel) {
    return 440.0 + 130.0 * channel;
}

// A tone of its own in every channel, as 16-bit or floating point samples.
Bytes MakeTones(const AudioFormat& format, double seconds) {
    const int frames = static_cast<int>(seconds * format.sampleRate);
    const auto width = static_cast<std::size_t>(BytesPerSample(format.kind));
    Bytes bytes(static_cast<std::size_t>(frames * format.BytesPerFrame()));
    std::uint8_t* to = bytes.data();
    for (int i = 0; i < frames; ++i) {
        for (int channel = 0; channel < format.channels; ++channel, to += width) {
            const double value =
                kAmplitude * std::sin(2.0 * std::numbers::pi * ToneOf(channel) * i / format.sampleRate);
            if (format.kind == SampleKind::kFloat32) {
                const auto sample = static_cast<float>(value);
                std::memcpy(to, &sample, sizeof(sample));
            } else {
                const auto sample = static_cast<std::int16_t>(std::lrint(value * 32767.0));
                std::memcpy(to, &sample, sizeof(sample));
            }
        }
    }
    return bytes;
}

std::vector<double> Channel(const AudioFormat& format, const Bytes& bytes, int channel) {
    const auto frameBytes = static_cast<std::size_t>(format.BytesPerFrame());
    const auto width = static_cast<std::size_t>(BytesPerSample(format.kind));
    std::vector<double> samples;
    for (std::size_t at = width * static_cast<std::size_t>(channel); at < bytes.size(); at += frameBytes) {
        if (format.kind == SampleKind::kFloat32) {
            float sample = 0;
            std::memcpy(&sample, bytes.data() + at, sizeof(sample));
            samples.push_back(static_cast<double>(sample));
        } else {
            std::int16_t sample = 0;
            std::memcpy(&sample, bytes.data() + at, sizeof(sample));
            samples.push_back(sample / 32768.0);
        }
    }
    return samples;
}

// Sends everything in pieces of `pieceFrames`.
Bytes Stretch(const AudioFormat& format, double rate, const Bytes& sound, int pieceFrames = 1024) {
    const std::unique_ptr<AudioStretch> stretch = AudioStretch::Create(format, rate);
    EXPECT_NE(nullptr, stretch);
    if (stretch == nullptr) {
        return {};
    }
    Bytes out;
    const int frames = static_cast<int>(sound.size()) / format.BytesPerFrame();
    for (int at = 0; at < frames; at += pieceFrames) {
        EXPECT_TRUE(stretch->Push(sound.data() + at * format.BytesPerFrame(),
                                  std::min(pieceFrames, frames - at), out));
    }
    EXPECT_TRUE(stretch->Drain(out));
    return out;
}

constexpr AudioFormat kMono = {SampleKind::kFloat32, 48'000, 1, 4};
constexpr AudioFormat kStereo = {SampleKind::kSigned16, 44'100, 2, 3};
constexpr AudioFormat kSixChannels = {SampleKind::kSigned16, 48'000, 6, 0x3F};

class AudioStretchRates : public ::testing::TestWithParam<double> {};

TEST_P(AudioStretchRates, KeepThePitchAndScaleTheLength) {
    for (const AudioFormat& format : {kMono, kStereo}) {
        const Bytes sound = MakeTones(format, kSeconds);
        const Bytes stretched = Stretch(format, GetParam(), sound);
        const double expected = static_cast<double>(sound.size()) / GetParam();
        EXPECT_NEAR(expected, static_cast<double>(stretched.size()), expected * 0.002);
        for (int channel = 0; channel < format.channels; ++channel) {
            const std::vector<double> heard = Channel(format, stretched, channel);
            const auto frequency = testing::DominantFrequency(heard, format.sampleRate);
            ASSERT_TRUE(frequency.has_value());
            EXPECT_NEAR(ToneOf(channel), *frequency, 1.0);
            EXPECT_NEAR(20.0 * std::log10(kAmplitude / std::sqrt(2.0)), testing::LevelDbfs(heard), 0.5);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllRates, AudioStretchRates,
                         ::testing::Values(0.25, 0.5, 0.75, 0.9, 1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 3.0, 4.0));

TEST(AudioStretch, EveryChannelKeepsItsPlace) {
    const Bytes stretched = Stretch(kSixChannels, 1.5, MakeTones(kSixChannels, 1.0));
    for (int channel = 0; channel < kSixChannels.channels; ++channel) {
        const auto frequency =
            testing::DominantFrequency(Channel(kSixChannels, stretched, channel), kSixChannels.sampleRate);
        ASSERT_TRUE(frequency.has_value());
        EXPECT_NEAR(ToneOf(channel), *frequency, 1.0);
    }
}

TEST(AudioStretch, PiecesOfAnySizeGiveTheSameSound) {
    const Bytes sound = MakeTones(kStereo, 0.5);
    const Bytes whole = Stretch(kStereo, 0.7, sound, 1'000'000);
    EXPECT_EQ(whole, Stretch(kStereo, 0.7, sound, 1024));
    EXPECT_EQ(whole, Stretch(kStereo, 0.7, sound, 37));
}

TEST(AudioStretch, NothingInGivesNothingOut) {
    EXPECT_TRUE(Stretch(kStereo, 2.0, {}).empty());
}

TEST(AudioStretch, BeginsAnewAfterDraining) {
    const Bytes sound = MakeTones(kStereo, 0.5);
    const std::unique_ptr<AudioStretch> stretch = AudioStretch::Create(kStereo, 1.5);
    ASSERT_NE(nullptr, stretch);
    const int frames = static_cast<int>(sound.size()) / kStereo.BytesPerFrame();
    Bytes first;
    Bytes second;
    for (Bytes* out : {&first, &second}) {
        ASSERT_TRUE(stretch->Push(sound.data(), frames, *out));
        ASSERT_TRUE(stretch->Drain(*out));
    }
    EXPECT_EQ(first, second);
}

// Where the stretched sound begins and ends is where the sound began and ended, so that it stays with the
// picture.
TEST(AudioStretch, WhatHappensInTheMiddleStaysThere) {
    for (const double rate : {0.5, 2.0}) {
        // Silence, then a tone.
        Bytes sound = MakeTones(kMono, 2.0);
        std::fill(sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(sound.size() / 2),
                  std::uint8_t{0});
        const Bytes stretched = Stretch(kMono, rate, sound);
        const auto onset = testing::OnsetTime(Channel(kMono, stretched, 0), kMono.sampleRate, -30.0);
        ASSERT_TRUE(onset.has_value());
        EXPECT_NEAR(1.0 / rate, *onset, 0.06) << rate;
    }
}

TEST(AudioStretch, RatesOutsideAreRefused) {
    EXPECT_EQ(nullptr, AudioStretch::Create(kStereo, 0.2499));
    EXPECT_EQ(nullptr, AudioStretch::Create(kStereo, 4.0001));
    EXPECT_EQ(nullptr, AudioStretch::Create(kStereo, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_NE(nullptr, AudioStretch::Create(kStereo, 0.25));
    EXPECT_NE(nullptr, AudioStretch::Create(kStereo, 4.0));
}

} // namespace
} // namespace brindlecast
