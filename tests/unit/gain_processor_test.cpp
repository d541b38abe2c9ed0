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

TEST(GainProcessor, NothingEverPassesFullScale) {
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
