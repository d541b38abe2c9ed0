#include "filters/core/gain_processor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

namespace brindlecast {
namespace {

constexpr int kRate = 48'000;
constexpr AudioFormat kMono = {SampleKind::kFloat32, kRate, 1, 4};

std::vector<float> Tone(double amplitude, int frames, int from = 0) {
    std::vector<float> samples(static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i) {
        samples[static_cast<std::size_t>(i)] =
            static_cast<float>(amplitude * std::sin(2.0 * std::numbers::pi * 500.0 * (from + i) / kRate));
    }
    return samples;
}

void Process(GainProcessor& processor, std::vector<float>& samples) {
    processor.Process(kMono, reinterpret_cast<std::uint8_t*>(samples.data()),
                      static_cast<int>(samples.size()));
}

float Peak(const std::vector<float>& samples) {
    float peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, std::abs(sample));
    }
    return peak;
}

TEST(GainProcessor, DoesNothingWhenThereIsNothingToDo) {
    for (const GainSettings& settings :
         {GainSettings{}, GainSettings{.normalize = true, .maxFactor = 1.0}, GainSettings{.boost = 0.5}}) {
        GainProcessor processor;
        processor.SetSettings(settings);
        auto samples = Tone(1.5, 1000);
        const auto before = samples;
        Process(processor, samples);
        EXPECT_EQ(samples, before);
        EXPECT_EQ(processor.NormalizationGain(), 1.0);
    }
}

TEST(GainProcessor, FullScaleSoundKeepsItsValuesUnderNormalisation) {
    GainProcessor processor;
    processor.SetSettings({.normalize = true});
    for (const SampleKind kind : {SampleKind::kSigned16, SampleKind::kSigned24}) {
        const AudioFormat format{kind, kRate, 1, 4};
        std::vector<std::uint8_t> bytes;
        for (int i = 0; i < 64; ++i) {
            // The lowest value in every stretch, and something in between.
            const std::uint32_t value = i % 8 == 0 ? 0x800000U : static_cast<std::uint32_t>(i * 3000 - 90000);
            const int size = BytesPerSample(kind);
            for (int byte = 3 - size; byte < 3; ++byte) {
                bytes.push_back(static_cast<std::uint8_t>(value >> (8 * byte)));
            }
        }
        const auto before = bytes;
        processor.Process(format, bytes.data(), 64);
        EXPECT_EQ(bytes, before);
    }
}

TEST(GainProcessor, QuietSoundIsRaisedByTheLargestFactor) {
    for (const double factor : {2.0, 3.0, 4.0}) {
        GainProcessor processor;
        processor.SetSettings({.normalize = true, .maxFactor = factor});
        auto samples = Tone(0.1, 4800);
        const auto before = samples;
        Process(processor, samples);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_NEAR(samples[i], before[i] * factor, 1e-5) << i;
        }
    }
}

// The processor cuts off what passes full scale, so that alone would hide a gain that is too high: a wave
// that is cut has neighbours that both lie at full scale, and this tone has its crests on single samples.
TEST(GainProcessor, NothingPassesFullScaleAndNothingIsCutOff) {
    std::uint32_t random = 5;
    for (const GainSettings& settings :
         {GainSettings{.normalize = true}, GainSettings{.normalize = true, .boost = 3.0},
          GainSettings{.boost = 4.0}}) {
        GainProcessor processor;
        processor.SetSettings(settings);
        for (int block = 0; block < 300; ++block) {
            random = random * 1664525U + 1013904223U;
            const double amplitude = (random >> 16) % 1300 / 1000.0;
            auto samples = Tone(amplitude, 1 + static_cast<int>((random >> 8) % 1500), block * 77);
            Process(processor, samples);
            ASSERT_LE(Peak(samples), 1.0F) << block;
            for (std::size_t i = 1; i < samples.size(); ++i) {
                ASSERT_FALSE(std::abs(samples[i - 1]) >= 1.0F && std::abs(samples[i]) >= 1.0F)
                    << block << ", " << i;
            }
        }
    }
}

TEST(GainEnvelope, NoGainLiftsItsPeakBeyondFullScale) {
    constexpr double kRounding = 1e-6;
    std::uint32_t random = 7;
    const auto next = [&random] {
        return (random = random * 1664525U + 1013904223U) >> 8;
    };
    for (const double ceiling : {1.0, 3.0, 10.0}) {
        for (const double rise : {1.0, 1.00004, 1.01}) {
            GainEnvelope envelope;
            std::vector<float> gains;
            double before = ceiling;
            for (int block = 0; block < 200; ++block) {
                std::vector<float> peaks(1 + next() % 60);
                for (float& peak : peaks) {
                    peak = next() % 4 == 0 ? 0.0F : static_cast<float>(next() % 1300) / 1000.0F;
                }
                envelope.Follow(peaks, ceiling, rise, gains);
                ASSERT_EQ(gains.size(), peaks.size());
                for (std::size_t i = 0; i < gains.size(); ++i) {
                    ASSERT_LE(gains[i] * peaks[i], 1.0 + kRounding) << block << ", " << i;
                    ASSERT_LE(gains[i], std::min(ceiling, before * rise) + kRounding) << block << ", " << i;
                    ASSERT_GT(gains[i], 0.0F);
                    before = gains[i];
                }
            }
        }
    }
}

TEST(GainProcessor, TheGainFallsAheadOfALoudSampleWithoutAStep) {
    GainProcessor processor;
    processor.SetSettings({.normalize = true});
    std::vector<float> samples(4800, 0.1F);
    std::fill(samples.begin() + 2400, samples.end(), 0.9F);
    Process(processor, samples);
    EXPECT_NEAR(samples[100], 0.3F, 1e-5F);
    EXPECT_NEAR(samples[2399], 0.1111F, 0.01F);
    for (std::size_t i = 1; i < 2400; ++i) {
        ASSERT_LE(std::abs(samples[i] - samples[i - 1]), 0.01F) << i;
    }
}

// The level of each stretch of one period that begins `from` or later, in decibels; entry i begins at from +
// i.
std::vector<double> LevelsFrom(const std::vector<float>& samples, std::size_t from, std::size_t period) {
    std::vector<double> levels;
    double energy = 0;
    for (std::size_t i = from; i < samples.size(); ++i) {
        energy += static_cast<double>(samples[i]) * samples[i];
        if (i + 1 >= from + period) {
            levels.push_back(10.0 * std::log10(energy / static_cast<double>(period)));
            const double leaving = samples[i + 1 - period];
            energy -= leaving * leaving;
        }
    }
    return levels;
}

// A tone of 1 kHz that steps from -40 to -6 dBFS.
std::vector<float> SteppingTone(std::size_t quietFrames, std::size_t frames, double phase) {
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double amplitude = std::pow(10.0, (i < quietFrames ? -40.0 : -6.0) / 20.0);
        const double angle = 2.0 * std::numbers::pi * 1000.0 * static_cast<double>(i) / kRate;
        samples[i] = static_cast<float>(amplitude * std::sin(angle + phase));
    }
    return samples;
}

TEST(GainProcessor, AStepInLoudnessHardlyOvershoots) {
    constexpr std::size_t kPeriod = kRate / 1000;
    constexpr std::size_t kStep = kRate / 2;
    constexpr std::size_t kTenMilliseconds = kRate / 100;
    constexpr double kLargestOvershoot = 0.5; // dB
    constexpr double kSettled = 0.05;         // dB
    for (const std::size_t blockFrames : {64U, 100U, 256U, 480U, 1000U, 1024U, 2048U, 4800U}) {
        for (int phase = 0; phase < 12; ++phase) {
            GainProcessor processor;
            processor.SetSettings({.normalize = true, .maxFactor = 3.0, .recover = true});
            auto samples = SteppingTone(kStep, kStep + kRate / 2, phase * std::numbers::pi / 12.0);
            for (std::size_t at = 0; at < samples.size(); at += blockFrames) {
                processor.Process(kMono, reinterpret_cast<std::uint8_t*>(samples.data() + at),
                                  static_cast<int>(std::min(blockFrames, samples.size() - at)));
            }
            const auto levels = LevelsFrom(samples, kStep, kPeriod);
            const double settled = levels.back();
            EXPECT_NEAR(settled, 10.0 * std::log10(0.5), 0.1) << "full scale";
            for (std::size_t i = 0; i < levels.size(); ++i) {
                const double allowed = i < kTenMilliseconds ? kLargestOvershoot : kSettled;
                ASSERT_LE(levels[i] - settled, allowed)
                    << i << " frames after the step, blocks of " << blockFrames << ", phase " << phase;
            }
        }
    }
}

TEST(GainProcessor, RecoveryIsSlowAndSteadyAcrossBlocks) {
    GainProcessor processor;
    processor.SetSettings({.normalize = true});
    auto loud = Tone(0.9, 4800);
    Process(processor, loud);
    EXPECT_NEAR(processor.NormalizationGain(), 1.0 / 0.9, 0.02);
    // 6 seconds double it: 100 blocks of 20 ms rise by 2^(2/6).
    const double before = processor.NormalizationGain();
    for (int block = 0; block < 100; ++block) {
        auto quiet = Tone(0.1, 960, block * 960);
        Process(processor, quiet);
    }
    EXPECT_NEAR(processor.NormalizationGain() / before, std::exp2(2.0 / 6.0), 0.01);
    for (int block = 0; block < 500; ++block) {
        auto quiet = Tone(0.1, 960, block * 960);
        Process(processor, quiet);
    }
    EXPECT_NEAR(processor.NormalizationGain(), 3.0, 1e-6);
}

TEST(GainProcessor, WithoutRecoveryTheLowestGainStays) {
    GainProcessor processor;
    processor.SetSettings({.normalize = true, .recover = false});
    auto loud = Tone(0.5, 4800);
    Process(processor, loud);
    for (int block = 0; block < 200; ++block) {
        auto quiet = Tone(0.1, 960, block * 960);
        Process(processor, quiet);
    }
    EXPECT_NEAR(processor.NormalizationGain(), 2.0, 0.01);
}

TEST(GainProcessor, AllChannelsShareOneGain) {
    GainProcessor processor;
    processor.SetSettings({.normalize = true});
    const AudioFormat stereo{SampleKind::kFloat32, kRate, 2, 3};
    std::vector<float> samples;
    for (int i = 0; i < 1000; ++i) {
        samples.push_back(0.8F);
        samples.push_back(0.2F);
    }
    processor.Process(stereo, reinterpret_cast<std::uint8_t*>(samples.data()), 1000);
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        ASSERT_NEAR(samples[i], 1.0F, 1e-5F);
        ASSERT_NEAR(samples[i + 1], 0.25F, 1e-5F);
    }
}

TEST(GainProcessor, EveryKindIsAmplifiedAlike) {
    struct Case {
        SampleKind kind;
        std::vector<std::uint8_t> in, out;
    };
    const Case cases[] = {
        {SampleKind::kUnsigned8, {128 + 10, 128 - 10}, {128 + 20, 128 - 20}},
        {SampleKind::kSigned16, {0xE8, 0x03, 0x18, 0xFC}, {0xD0, 0x07, 0x30, 0xF8}},
        {SampleKind::kSigned24, {1, 0, 2, 0xFF, 0xFF, 0xFD}, {2, 0, 4, 0xFE, 0xFF, 0xFB}},
        {SampleKind::kSigned32, {0, 0, 1, 2, 0, 0, 0xFF, 0xFD}, {0, 0, 2, 4, 0, 0, 0xFE, 0xFB}}};
    for (const Case& c : cases) {
        GainProcessor processor;
        processor.SetSettings({.boost = 2.0});
        auto bytes = c.in;
        processor.Process({c.kind, kRate, 1, 4}, bytes.data(), 2);
        EXPECT_EQ(bytes, c.out) << static_cast<int>(c.kind);
    }
}

TEST(GainProcessor, ValuesThatAreNoNumbersAndNonsenseSettingsDoNoHarm) {
    GainProcessor processor;
    processor.SetSettings({.normalize = true, .maxFactor = std::nan(""), .boost = std::nan("")});
    auto samples = Tone(0.5, 100);
    const auto before = samples;
    Process(processor, samples);
    EXPECT_EQ(samples, before);
    processor.SetSettings({.normalize = true, .maxFactor = 3.0});
    samples[3] = std::nanf("");
    samples[5] = INFINITY;
    Process(processor, samples);
    for (const float sample : samples) {
        EXPECT_TRUE(std::isfinite(sample));
    }
    Process(processor, samples);
    processor.Process(kMono, nullptr, 0);
}

} // namespace
} // namespace brindlecast
